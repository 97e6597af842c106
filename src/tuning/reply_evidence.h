#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qv5123 {

/// What damaged answers to one request prove together, byte by byte.
///
/// The line loses digits, doubles them or makes others of them, so that all behind one shifts:
///
///     expected   0400ff800080...
///     answer     0400f800080...      one digit less: 04 and 00 stand where they should, and so does what is
///                                    farther back, seen from its end; of ff and 80 nobody knows
///
/// Each answer is laid along the reply that is expected with as few faults as possible: a digit that is lost
/// or too many counts two, a digit that is another one. A byte has been seen where every other way to lay it,
/// that byte elsewhere or not whole, counts at least three more. What the digits of the byte are plays no
/// part in that, so a byte that differs is seen as one that is alike. Within a run of equal digits a loss may
/// have been anywhere: there nothing is seen.
///
/// With losses alone the true way counts two for each, as every way does, and one for each digit that came
/// through and differs from what is expected. So a byte can be taken for another than the chip's only where
/// at least three digits more differ and, shifted, look as expected, and that in two answers more than not.
/// On a chip whose words have all shifted by one that was lost it may be so each time; the lost one itself is
/// never seen as sent.
class ReplyEvidence {
 public:
  /// Stands in the expected reply for a digit that nobody knows.
  static constexpr char kUnknown = '?';
  /// An answer that lost more digits in all, or has more too many, proves nothing.
  static constexpr int kMostShift = 16;

  ReplyEvidence() = default;
  /// Hex digits and kUnknown, two to a byte.
  explicit ReplyEvidence(std::string expected)
      : expected_(std::move(expected)), bytes_(expected_.size() / 2) {}

  const std::string& expected() const { return expected_; }
  void add(std::string_view answer);
  /// Whether the byte at that character position is proven: seen as one number at least two times more
  /// often than as anything else.
  bool proves(std::size_t position) const;
  /// All proven bytes in their places, and 0 elsewhere.
  std::string reply() const;

 private:
  struct Seen {
    int number = 0;
    int lead = 0;  ///< how much more often than anything else
  };
  void see(Seen& byte, int number);

  std::string expected_;
  std::vector<Seen> bytes_;
};

}  // namespace qv5123
