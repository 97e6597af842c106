#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/page_host.h"
#include "registers/register_file.h"
#include "registers/register_loader.h"

namespace qv5123 {

/// Reads back what a register file has written, register by register, and sends again what differs.
class RegisterCheck {
 public:
  /// Who wants to know.
  struct Listener {
    /// Whether anything is to be read back at all.
    std::function<bool()> wanted;
    /// What came of it, and what is known to differ, a text each; `again` sends that once more and is empty
    /// where there is nothing to send. An empty text: what was told before is past.
    std::function<void(const std::string& text, const std::vector<std::string>& differences,
                       std::function<void()> again)>
        tell;
  };
  /// How often "Send these again" does so.
  static constexpr int kMostRepairs = 3;
  /// So many damaged answers of a register, or answers that are not alike, are too many.
  static constexpr int kMostReads = 6;

  RegisterCheck(DeskHost& host, RegisterLoader& loader) : host_(host), loader_(loader) {}

  void tell(Listener listener) { listener_ = std::move(listener); }
  /// Ends what is under way, and takes away what it has told.
  void forget();
  /// These have been written: the last value of each address counts.
  void start(const std::vector<RegisterFile::Line>& written);
  /// This was written since.
  void written(int address, int value);

 private:
  struct Register {
    int address = 0;
    int sent = 0;
    std::optional<int> chip;  ///< what it has answered
    bool differs() const { return chip && *chip != sent; }
  };
  enum class Found { value, silence, damage };

  Task<> check() { co_await read_back(); }
  /// A chip that was away since the last call may have lost what it had; true where it was.
  bool forget_chip_that_was_away();
  /// False when not all have answered.
  Task<bool> read_back();
  Task<> repair();
  Task<Found> ask(std::size_t at);
  std::vector<std::string> differences() const;
  void tell_result(Found found);

  DeskHost& host_;
  RegisterLoader& loader_;
  Listener listener_;
  std::vector<Register> registers_;
  unsigned connection_ = 0;  ///< of the link, in which the chip has answered
  Flow flow_;
};

}  // namespace qv5123
