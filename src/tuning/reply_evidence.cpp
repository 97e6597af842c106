#include "tuning/reply_evidence.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

#include "base/hex.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

constexpr int kMostShift = ReplyEvidence::kMostShift;
constexpr int kShifts = 2 * kMostShift + 1;
constexpr int kShiftCost = 2;  ///< of a digit lost or too many
constexpr int kMargin = 3;
constexpr int kNever = 1'000'000;
/// By how many times more often than as anything else a byte has to be seen as one number.
constexpr int kLead = 2;

/// By how many digits were lost so far, those too many taken off.
using Costs = std::array<int, kShifts>;
int& at(Costs& costs, int shift) {
  const int place = shift + kMostShift;
  return costs[static_cast<std::size_t>(place)];
}
int at(const Costs& costs, int shift) {
  const int place = shift + kMostShift;
  return std::abs(shift) > kMostShift ? kNever : costs[static_cast<std::size_t>(place)];
}

int other_digit(char expected, char answered) {
  if (expected == ReplyEvidence::kUnknown) return 0;
  return all_hex_digits({&answered, 1}) && hex_value(static_cast<unsigned char>(expected)) ==
                                               hex_value(static_cast<unsigned char>(answered))
             ? 0
             : 1;
}

std::string reversed(std::string_view text) {
  return {text.rbegin(), text.rend()};
}

/// For each place in `expected`, its end included, what it costs at least to come there from the front.
std::vector<Costs> costs_along(std::string_view expected, std::string_view answer) {
  const auto size = static_cast<int>(expected.size());
  const auto answered = static_cast<int>(answer.size());
  std::vector<Costs> costs(expected.size() + 1);
  for (Costs& row : costs) row.fill(kNever);
  at(costs[0], 0) = 0;
  for (int i = 0; i <= size; ++i) {
    Costs& here = costs[static_cast<std::size_t>(i)];
    for (int shift = kMostShift; shift >= -kMostShift; --shift) {
      const int cost = at(here, shift);
      const int next = i - shift;  // of the answer
      if (cost >= kNever || next < 0 || next > answered) continue;
      const auto take = [](int& known, int way) { known = std::min(known, way); };
      if (shift > -kMostShift && next < answered) take(at(here, shift - 1), cost + kShiftCost);
      if (i == size) continue;
      Costs& there = costs[static_cast<std::size_t>(i) + 1];
      if (shift < kMostShift) take(at(there, shift + 1), cost + kShiftCost);
      if (next < answered)
        take(at(there, shift), cost + other_digit(expected[static_cast<std::size_t>(i)],
                                                  answer[static_cast<std::size_t>(next)]));
    }
  }
  return costs;
}

/// All ways to lay an answer along a reply.
class Alignment {
 public:
  Alignment(const std::string& expected, std::string_view answer)
      : lost_(static_cast<int>(expected.size()) - static_cast<int>(answer.size())),
        from_front_(costs_along(expected, answer)),
        from_end_(costs_along(reversed(expected), reversed(answer))) {}

  /// Where in the answer the byte at `position` is for sure.
  std::optional<std::size_t> place_of(std::size_t position) const {
    const Costs& before = from_front_[position];
    int best = kMostShift;
    for (int shift = -kMostShift; shift < kMostShift; ++shift)
      if (through(position, shift) < through(position, best)) best = shift;
    const int enough = through(position, best) + kMargin;
    if (enough >= kNever) return std::nullopt;
    for (int shift = -kMostShift; shift <= kMostShift; ++shift)
      for (int after = -kMostShift; after <= kMostShift; ++after)
        if ((shift != best || after != best) &&
            at(before, shift) + kShiftCost * std::abs(shift - after) + behind(position, after) < enough)
          return std::nullopt;
    return static_cast<std::size_t>(static_cast<int>(position) - best);
  }

 private:
  /// From behind the byte to the end.
  int behind(std::size_t position, int shift) const {
    return at(from_end_[from_end_.size() - position - 3], lost_ - shift);
  }
  /// Along both digits of the byte, whatever they are.
  int through(std::size_t position, int shift) const {
    return at(from_front_[position], shift) + behind(position, shift);
  }

  int lost_;
  std::vector<Costs> from_front_;
  std::vector<Costs> from_end_;
};

}  // namespace

void ReplyEvidence::add(std::string_view answer) {
  if (std::abs(static_cast<int>(expected_.size()) - static_cast<int>(answer.size())) > kMostShift) return;
  const Alignment alignment(expected_, answer);
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    const auto place = alignment.place_of(2 * i);
    if (place && all_hex_digits(answer.substr(*place, 2))) see(bytes_[i], reply_byte_at(answer, *place));
  }
}

void ReplyEvidence::see(Seen& byte, int number) {
  if (byte.lead == 0) byte.number = number;
  byte.lead += byte.number == number ? 1 : -1;
}

bool ReplyEvidence::proves(std::size_t position) const {
  return position / 2 < bytes_.size() && bytes_[position / 2].lead >= kLead;
}

std::string ReplyEvidence::reply() const {
  std::string text;
  for (const Seen& byte : bytes_)
    text += lower_hex(byte.lead >= kLead ? static_cast<unsigned>(byte.number) : 0);
  return text;
}

}  // namespace qv5123
