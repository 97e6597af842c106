#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// What the chip sends is text for people with reply blocks in it: "~", hex digits, "^". The answer to a read
/// of one register is one pair of digits, and that to a page's trigger up to 486 of them:
///
///     41 45 20 6f 6e 0d 0a 7e 35 61 5e 3e    "AE on" CR LF "~5a^" ">"
///
/// is the console text "AE on" CR LF ">" with the answer 0x5A in it. A block says neither what it answers nor
/// how long it is. "$" inside a block abandons it.
namespace qv5123 {

/// Tells reply blocks from the console text around them, and keeps the block that was received last.
class ReplyBuffer {
 public:
  static constexpr std::size_t kSize = 500;

  enum class State {
    idle = 0,
    in_block = 1,   ///< between "~" and "^"
    abandoned = 5,  ///< the chip sent "$"; no consumer accepts it
    complete = 10,  ///< a block waits for its consumer
  };

  /// Classifies the received bytes and returns those that are console text, as 8-bit characters. NULs
  /// vanish. A block longer than 500 characters wraps and overwrites its own start.
  std::string decode(std::span<const std::uint8_t> received);

  State state() const { return state_; }
  /// The next write position, which is how many characters the block holds unless it filled the buffer.
  std::size_t index() const { return index_; }

  /// How many blocks have begun since forget(). Answers do not say what they answer, so that whoever asks for
  /// the same thing twice counts them.
  std::size_t blocks() const { return blocks_; }

  /// How many blocks were ever complete.
  std::uint64_t completed() const { return completed_; }
  /// How many of them had so many characters, 0..500: also one that the next has taken the place of.
  std::uint32_t completed_of(std::size_t size) const { return completed_of_[size]; }

  /// How many characters the block has so far, at most 500.
  std::size_t size() const { return received_ < kSize ? received_ : kSize; }

  /// The complete block's characters, at most 500, and back to idle. Nothing when none is complete, or when
  /// it overwrote its start.
  std::optional<std::string> take_block();

  /// True when the last block, complete or not, did not fit and overwrote its start.
  bool overran() const { return received_ > kSize; }

  /// True when the last block overran or is no even number of hex digits.
  bool damaged() const;

  /// The value of the last two characters stored, 0..255; nothing when fewer than two are there. Lowers the
  /// index by two, so that the same pair is not taken twice.
  std::optional<int> take_last_pair();
  /// The same two characters as they are.
  std::optional<std::string> take_last_two();

  /// Drops what was received. Called before a request, so that a late answer to an earlier one is not taken
  /// for its reply. A block that is just arriving is dropped with it.
  void forget();
  /// Zeroes the whole buffer and goes idle.
  void clear();

 private:
  void store(char c);

  std::array<char, kSize> text_{};
  std::size_t index_ = 0;
  std::size_t received_ = 0;  // characters of the block, those overwritten included
  std::size_t blocks_ = 0;
  std::uint64_t completed_ = 0;
  std::array<std::uint32_t, kSize + 1> completed_of_{};
  State state_ = State::idle;
};

}  // namespace qv5123
