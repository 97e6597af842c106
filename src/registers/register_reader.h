#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "link/command_link.h"

namespace qv5123 {

/// What a look for the answer to a read request found.
struct RegisterAnswer {
  enum class Kind {
    none,  ///< nothing has come yet
    value,
    damaged,  ///< an answer that does not end in two hex digits, or has an odd number of them
  };
  Kind kind = Kind::none;
  int value = 0;  ///< 0..255

  bool came() const { return kind != Kind::none; }
  bool has_value() const { return kind == Kind::value; }
};

/// Asks the chip for one register after the other and keeps their answers apart, however late they come.
///
/// An answer does not say what it answers. So the answers are counted: before another register is asked,
/// those that the chip still owes to earlier requests are waited for and dropped, or the line is quiet for
/// longer than the chip takes for an answer.
class RegisterReader {
 public:
  using Milliseconds = std::chrono::milliseconds;
  /// How long an answer is waited for, and the latency of a chip that has not answered yet.
  static constexpr Milliseconds kPatience{1800};
  /// What the chip may take longer for an answer than it ever took.
  static constexpr Milliseconds kMargin{100};

  explicit RegisterReader(CommandLink& link) : link_(link) {}

  /// Asks for a register. Whoever calls it holds the turn. If it is cancelled before the request has its turn
  /// the request does not leave.
  Task<> ask(int address, const CommandLink::Turn& turn);
  /// The same for a register that may have been asked for before: an answer to that is one to this, too.
  Task<> ask_again(int address, const CommandLink::Turn& turn);

  /// Takes the answer to what was asked last.
  RegisterAnswer look();

  /// Whether the request that was made last left, and the connection is still the same. Otherwise there is
  /// nobody who could answer.
  bool asked() const { return left_ && connection_ == link_.connection(); }

 private:
  Task<> settle();
  Task<> send(int address, bool again);
  std::size_t owed() const;
  Milliseconds patience() const { return latency_.count() ? latency_ + kMargin : kPatience; }
  void note_latency();

  CommandLink& link_;
  int address_ = -1;
  std::size_t requests_ = 0;  ///< since another register was asked
  bool left_ = false;
  unsigned connection_ = 0;
  Milliseconds first_sent_{0};
  Milliseconds last_sent_{0};
  Milliseconds latency_{0};  ///< 0: not known
};

/// "0xF809"
std::string address_name(int address);

}  // namespace qv5123
