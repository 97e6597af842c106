#pragma once

#include <chrono>
#include <filesystem>
#include <string_view>
#include <vector>

#include "console/page_host.h"
#include "registers/kept_registers.h"
#include "registers/register_check.h"
#include "registers/register_loader.h"
#include "registers/register_sheet.h"
#include "registers/register_view.h"

namespace qv5123 {

/// What the register page does: every operation of the user's, carried out on the sheet and on the wire. The
/// view is told what changed.
class RegisterDesk {
 public:
  /// From the request of a single read to the look for its reply. A slower chip is looked for as often as
  /// RegisterReader::kPatience allows.
  static constexpr std::chrono::milliseconds kReadWait{150};

  RegisterDesk(PageHost& host, RegisterView& view);

  const RegisterSheet& sheet() const { return sheet_; }

  /// Reads "regu.xml" of the directory that is current now, in the background, then shows it. Until then
  /// there are no registers, as without a description.
  void open();
  bool opening() const { return open_.running(); }
  /// Takes the description, shows its first category and says what was wrong with it, if anything.
  void describe(RegDescription description);

  void choose_category(int category);
  void select_row(int row);
  /// Lists its category, where another one is, and selects and reads it there.
  void choose_register(std::size_t reg);
  /// Reads the register at the address, which must be above 0; otherwise nothing happens. A register that
  /// does not answer shows no value, and the status bar says so.
  void read();
  bool reading() const { return read_.running(); }
  /// Writes the value to the address, which must be above 0; otherwise nothing happens. Asks first where
  /// there is no value, which would be written as 0xFF.
  void write();
  void type_address(std::u16string_view text);
  void type_value(std::u16string_view text);
  void set_bits(int bits);
  /// A number was typed for a bit field. As a box that is switched, it is sent with "Write".
  void set_field(std::size_t row, int number);
  /// Takes back the last change of the value, or makes it again. Nothing is sent. Changes are forgotten when
  /// another register is shown, or when it is read.
  bool can_undo() const { return !undo_.empty(); }
  bool can_redo() const { return !redo_.empty(); }
  void undo() { go_back(undo_, redo_); }
  void redo() { go_back(redo_, undo_); }

  void load_category() { loader_.load_category(); }
  void load_all() { loader_.load_all(); }
  /// Ends both sequences.
  void stop() { loader_.stop(); }
  /// Saves the registers read so far, and says how many. Those written since may be read again before.
  void save_file();
  /// Writes a file's registers to the chip. Closing the window asks meanwhile. Once that is over they are
  /// read back where check()'s listener wants that.
  void load_file();
  RegisterCheck& check() { return check_; }
  /// Registers that were read show what the chip had before, until they are read again.
  void chip_was_reset();
  /// Stores the registers 0xF800..0xFFFF in the chip's flash. The page's button for it is disabled.
  void write_flash();

 private:
  Task<> read_description(std::filesystem::path path);
  Task<> single_read(int address);
  Task<RegisterAnswer> late_answer();
  void show_answer(int address, const RegisterAnswer& answer);
  void show_value();
  void drop_late_answer();
  void note_change(RegisterSheet::Typed before);
  void go_back(std::vector<RegisterSheet::Typed>& from, std::vector<RegisterSheet::Typed>& to);
  void forget_changes();
  Task<> write_unknown(int address);
  void write_to(int address);
  Task<> save_file_flow();
  Task<> offer_to_read_written();
  Task<> read_written();
  Task<> load_file_flow();
  void list_category(int category, bool anew);
  void show_current();
  void say(const std::string& text);

  PageHost& host_;
  RegisterView& view_;
  RegisterSheet sheet_;
  RegisterReader reader_;
  RegisterLoader loader_;
  RegisterCheck check_;
  KeptRegisters flash_;
  bool answer_is_late_ = false;  ///< of the single read that runs
  bool read_failed_ = false;     ///< the last one, and the status bar says so
  std::vector<RegisterSheet::Typed> undo_;
  std::vector<RegisterSheet::Typed> redo_;
  Flow open_;
  Flow read_;
  Flow write_;
  Flow save_;
  Flow load_;
  FlowSet messages_;
};

}  // namespace qv5123
