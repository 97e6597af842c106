#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "registers/answering_chip.h"
#include "registers/register_desk.h"
#include "support/fake_page_host.h"
#include "support/temporary_folder.h"

namespace qv5123::test {

/// The page as the desk sees it; but for the buttons it shows nothing.
class NoView : public RegisterView {
 public:
  RegisterButtons buttons;

  void show_description() override {}
  void show_category() override {}
  void show_selection() override {}
  void show_value_of(std::size_t) override {}
  void show_values() override {}
  void show_register() override {}
  void show_value() override {}
  void show_fields() override {}
  void show_data() override {}
  void show_steps() override {}
  void show_buttons(const RegisterButtons& now) override { buttons = now; }
};

/// The register page without its window, on a chip that answers.
class RegisterDeskTest : public testing::Test {
 protected:
  RegisterDeskTest() { chip_.values = {{0x800, 0xA5}, {0x801, 0x3C}, {0x0A5, 0x51}, {0xA20, 0x07}}; }
  void open(std::u16string_view description = kSampleDescription) {
    desk_.emplace(host_, view_);
    desk_->describe(RegDescription::parse(std::u16string(description)));
  }
  /// Opened, and the first register has been read.
  void open_and_read() {
    open();
    wire_.advance(200);
    wire_.sender.writes.clear();
    chip_.requests.clear();
  }
  const RegisterSheet& sheet() const { return desk_->sheet(); }
  std::u16string value_cell(std::size_t row) const { return sheet().value_of(sheet().register_of(row)); }
  int stored(std::size_t reg) const { return sheet().description().registers[reg].value; }

  const TemporaryFolder folder_;
  FakeWire wire_;
  AnsweringChip chip_{wire_};
  FakePageHost host_{wire_};
  NoView view_;
  std::optional<RegisterDesk> desk_;
};

}  // namespace qv5123::test
