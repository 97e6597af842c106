#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

#include "link/command_link.h"
#include "registers/register_sheet.h"
#include "registers/register_view.h"

namespace qv5123 {

/// The page's long sequences: reading a category or all registers from the chip, and writing the known values
/// to it. They run on the scheduler, so the window stays live and other requests come in between.
class RegisterLoader {
 public:
  /// From one request of a sequence to the next. A request without a reply is repeated, without limit.
  static constexpr std::chrono::milliseconds kStep{100};
  /// Within a step, when the reply is looked for first.
  static constexpr std::chrono::milliseconds kReplyWait{60};
  /// Between the writes of a register file.
  static constexpr std::chrono::milliseconds kWriteWait{40};

  RegisterLoader(CommandLink& link, RegisterSheet& sheet, RegisterView& view)
      : link_(link), sheet_(sheet), view_(view) {}

  const RegisterButtons& buttons() const { return buttons_; }

  /// Reads the registers of the shown category. A row whose address is 0 or none halts it for good, with its
  /// button disabled until the category is chosen again.
  void load_category();
  void stop_category();
  /// Reads every register. A register whose address is 0 or none halts it, with its button disabled.
  void load_all();

  void enable_load_file(bool enable);
  /// Writes every register whose value is known, and tells how many of them did not leave. `matches` stands
  /// for the whole in the button's caption.
  Task<std::size_t> write_known(std::size_t matches);

 private:
  Task<> category_sequence();
  Task<> all_sequence();
  Task<bool> step(int address, bool repeated, std::function<void(int)> take);
  void show_cell(std::size_t reg);

  CommandLink& link_;
  RegisterSheet& sheet_;
  RegisterView& view_;
  RegisterButtons buttons_;
  Flow category_;
  Flow all_;
};

}  // namespace qv5123
