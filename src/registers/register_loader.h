#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "console/page_host.h"
#include "registers/register_file.h"
#include "registers/register_reader.h"
#include "registers/register_sheet.h"
#include "registers/register_view.h"

namespace qv5123 {

/// The page's long sequences: reading a category or all registers from the chip, and writing the known values
/// to it. They run on the scheduler, so the window stays live and other requests come in between. The status
/// bar tells where a sequence stands still, and what came of it.
class RegisterLoader {
 public:
  /// From one request of a sequence to the next. A request without a reply is repeated, without limit.
  static constexpr std::chrono::milliseconds kStep{100};
  /// Within a step, when the reply is looked for first.
  static constexpr std::chrono::milliseconds kReplyWait{60};
  /// Between the writes of a register file.
  static constexpr std::chrono::milliseconds kWriteWait{40};

  RegisterLoader(PageHost& host, RegisterReader& reader, RegisterSheet& sheet, RegisterView& view)
      : host_(host), reader_(reader), sheet_(sheet), view_(view) {}

  const RegisterButtons& buttons() const { return buttons_; }

  /// Reads the registers of the shown category. A row whose address is 0 or none halts it for good, with its
  /// button disabled until the category is chosen again, or stop().
  void load_category();
  void stop_category();
  /// Reads every register. A register whose address is 0 or none halts it, with its button disabled until
  /// stop().
  void load_all();
  /// Ends both sequences, wherever they have come to, and makes their buttons live again.
  void stop();

  /// Reads the register as a sequence does, the request repeated until the answer comes. None when it has not
  /// come within RegisterReader::kPatience.
  Task<RegisterAnswer> read(int address);

  void enable_load_file(bool enable);
  /// Writes registers one after the other, and tells how many of them did not leave. `matches` stands for the
  /// whole in the button's caption.
  Task<std::size_t> write(std::vector<RegisterFile::Line> registers, std::size_t matches);

 private:
  Task<> category_sequence();
  Task<> all_sequence();
  Task<int> value_of(int address);
  void halt(const char* button, std::size_t reg, const char* remedy);
  void end_all();
  void show_buttons();

  PageHost& host_;
  RegisterReader& reader_;
  RegisterSheet& sheet_;
  RegisterView& view_;
  RegisterButtons buttons_;
  std::size_t loaded_category_ = 0;  ///< registers that the sequence has read
  std::size_t loaded_all_ = 0;
  Flow category_;
  Flow all_;
};

}  // namespace qv5123
