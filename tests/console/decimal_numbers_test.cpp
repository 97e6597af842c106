#include "console/decimal_numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qv5123 {
namespace {

using testing::ElementsAre;

TEST(DecimalNumbers, LowEightBitsCountAndReadsThatFailRepeatTheLastNumber) {
  EXPECT_THAT(read_decimal_bytes("1\r\n 255\t\v\f300\r\n-1 +7", 5), ElementsAre(1, 255, 0x2C, 255, 7));
  EXPECT_THAT(read_decimal_bytes("", 2), ElementsAre(0, 0));
  EXPECT_THAT(read_decimal_bytes("5 9\r\n", 4), ElementsAre(5, 9, 9, 9));
  EXPECT_THAT(read_decimal_bytes("5 x 9", 4), ElementsAre(5, 5, 5, 5)) << "a letter is never passed";
  EXPECT_THAT(read_decimal_bytes("12ab 9", 3), ElementsAre(12, 12, 12));
  EXPECT_THAT(read_decimal_bytes("3 --4 -", 5), ElementsAre(3, 3, 252, 252, 252)) << "a lone sign is passed";
  EXPECT_THAT(read_decimal_bytes("4294967297 -2147483648 99999999999999999999999999", 3),
              ElementsAre(1, 0, 255));
}

}  // namespace
}  // namespace qv5123
