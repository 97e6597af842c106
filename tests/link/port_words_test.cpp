#include <gtest/gtest.h>

#include <limits>

#include "link/line_settings.h"
#include "link/port_list.h"

namespace qv5123 {
namespace {

using std::chrono::nanoseconds;

TEST(PortName, TakesTheDevicePathFormFromTenAndItsNumberFollowsTheFirstCom) {
  EXPECT_EQ(comm_device_name(9), "COM9");
  EXPECT_EQ(comm_device_name(10), R"(\\.\COM10)");
  EXPECT_EQ(openable_name("COM12"), R"(\\.\COM12)");
  EXPECT_EQ(openable_name("com3"), "COM3");
  EXPECT_EQ(openable_name(R"(\\.\Com3)"), "COM3");
  for (const char* same : {"", "COM", "COM12x", "COM0", "/dev/ttyUSB0"}) EXPECT_EQ(openable_name(same), same);
  EXPECT_EQ(port_number_from_name("COM12"), 12);
  EXPECT_EQ(port_number_from_name(R"(\\.\COM7)"), 7);
  EXPECT_EQ(port_number_from_name("USB Serial Port (COM5)"), 5);
  for (const char* none : {"", "LPT1", "COM", "COMx", "COM-3", "com5", "COM99999999999"})
    EXPECT_EQ(port_number_from_name(none), std::nullopt) << none;
}

TEST(PortList, TakesEnabledComPortsOfThePortsClassOnly) {
  const PortProperties usb{"Ports", 0, "USB Serial Port (COM12)", "COM12"};
  EXPECT_EQ(port_from_properties(usb), (PortInfo{12, R"(\\.\COM12)", "USB Serial Port (COM12)"}));
  EXPECT_TRUE(port_from_properties({"Ports", 10, "x (COM12)", "COM12"}))
      << "its start is for the open to tell";
  EXPECT_FALSE(port_from_properties({"Modem", 0, "USB Modem (COM12)", "COM12"}));
  EXPECT_FALSE(port_from_properties({"Ports", 0, "Printer Port (LPT1)", "LPT1"}));
  EXPECT_FALSE(port_from_properties({"Ports", 22, "Disabled (COM12)", "COM12"}));
}

TEST(LineSettings, AByteTakesItsBitsOnTheLine) {
  EXPECT_EQ(line_time(96, {.baud_rate = 19200}), std::chrono::milliseconds(50)) << "10 bits a byte";
  EXPECT_EQ(line_time(1, {.baud_rate = 1000, .data_bits = 5, .stop_bits = 1}), nanoseconds(7'500'000));
  EXPECT_EQ(line_time(1, {.baud_rate = 1000, .data_bits = 7, .stop_bits = 2, .parity = 1}),
            nanoseconds(11'000'000));
  EXPECT_EQ(line_time(5, {.baud_rate = 0}), nanoseconds(0));
  EXPECT_GT(line_time(std::numeric_limits<std::size_t>::max(), {.baud_rate = 1, .stop_bits = 255}),
            nanoseconds(0));
}

}  // namespace
}  // namespace qv5123
