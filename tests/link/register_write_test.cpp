#include "link/register_write.h"
#include "link/indirect_access.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(RegisterWrite, IndirectAccessesGoThroughTheirPorts) {
  EXPECT_EQ(frames(isp_write(0x922, 0xCC)), "@9209*@9222*@93cc*");
  EXPECT_EQ(frames(isp_write(0xF8A5, 0x17F)), "@9208*@92a5*@937f*") << "12 address bits, 8 data bits travel";
  EXPECT_EQ(frames(isp_read_request(0xF922)), "@9409*@9422*");
  EXPECT_EQ(frames(isp_wide_write(0x123, 0xABCD)), "@9501*@9523*@96ab*@96cd*");
  EXPECT_EQ(frames(isp_wide_read_request(0x123)), "@9701*@9723*");
  EXPECT_EQ(frames(sensor_write(0x3012, 0xBEEF)), "@9830*@9812*@99be*@99ef*");
  EXPECT_EQ(frames(sensor_read_request(0x3012)), "@9a30*@9a12*");
  EXPECT_EQ(frames(dump_request(0x100, 0x1FF)), "@9b01*@9b00*@9b01*@9bff*");
}

}  // namespace
}  // namespace qv5123
