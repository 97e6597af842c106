#include "simulator/white_test.h"

#include <algorithm>

namespace qv5123 {
namespace {

constexpr std::size_t kLineEntries = 181;
constexpr double kLineUnit = 256;

}  // namespace

double luma_of(const Light& colour) {
  return 0.296875 * colour[0] + 0.578125 * colour[1] + 0.125 * colour[2];
}

WhiteTest::WhiteTest(const UserDataImage& data) {
  const auto number = [&](std::size_t word) {
    const int value = data.word(kLineEntries + 2 * word);
    return (value >= 0x8000 ? value - 0x10000 : value) / kLineUnit;
  };
  for (std::size_t i = 0; i < lines_.size(); ++i) lines_[i] = {number(2 * i), number(2 * i + 1)};
  right_ = number(8);
  top_ = number(9);
}

bool WhiteTest::is_white(const Light& colour) const {
  const double y = luma_of(colour);
  if (y <= 0) return false;
  const double cr = (0.5 * colour[0] - 0.42188 * colour[1] - 0.07813 * colour[2]) / y;
  const double cb = (-0.16797 * colour[0] - 0.33203 * colour[1] + 0.5 * colour[2]) / y;
  const auto between = [&](const Line& one, const Line& other) {
    const auto [low, high] = std::minmax({one.at(cb), other.at(cb)});
    return cr >= low && cr <= high;
  };
  if (cb > right_ || cr > top_) return false;
  return between(lines_[0], lines_[1]) || between(lines_[2], lines_[3]);
}

}  // namespace qv5123
