#include "link/register_write.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(RegisterWrite, FramesAreLowercaseHexBetweenAtAndStar) {
  EXPECT_EQ(frame({0xAB, 0x0F}), "@ab0f*");
  EXPECT_EQ(frame({0x92, 0x09}), "@9209*");
  EXPECT_EQ(frames({{0x00, 0xFF}, {0xFA, 0x01}}), "@00ff*@fa01*");
}

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

TEST(RegisterWrite, WordsSplitAsTwosComplementHighByteFirst) {
  EXPECT_EQ(word_write(0x0D, 800), (Batch{{0x0D, 0x03}, {0x0D, 0x20}}));
  EXPECT_EQ(word_write(0x0D, -2), (Batch{{0x0D, 0xFF}, {0x0D, 0xFE}}));
}

}  // namespace
}  // namespace qv5123
