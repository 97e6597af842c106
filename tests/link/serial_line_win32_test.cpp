#include "link/serial_line_win32.h"

#include <gtest/gtest.h>

#include "link/port_list.h"

namespace qv5123 {
namespace {

TEST(SerialLineWin32, SettingsGoIntoTheControlBlockAndLeaveTheRest) {
  DCB line{};
  line.fBinary = TRUE;
  line.fTXContinueOnXoff = TRUE;
  line.EvtChar = 'e';
  set_up_line(line, {.baud_rate = 57600, .data_bits = 7, .stop_bits = 1, .parity = 3, .flow_flags = 0});
  EXPECT_EQ(line.BaudRate, 57600u);
  EXPECT_EQ(line.ByteSize, 7);
  EXPECT_EQ(line.StopBits, ONE5STOPBITS);
  EXPECT_EQ(line.Parity, MARKPARITY);
  EXPECT_EQ(line.XonChar, 0x11);
  EXPECT_EQ(line.XoffChar, 0x13);
  EXPECT_TRUE(line.fBinary && line.fTXContinueOnXoff && line.EvtChar == 'e');
}

TEST(SerialLineWin32, EachFlowFlagSwitchesItsOwnFields) {
  for (DWORD flags = 0; flags < 8; ++flags) {
    DCB line{};
    set_up_line(line, {.flow_flags = flags});
    EXPECT_EQ(line.fOutxDsrFlow, flags & 1u);
    EXPECT_EQ(line.fDtrControl, flags & 1u ? DTR_CONTROL_HANDSHAKE : DTR_CONTROL_ENABLE);
    EXPECT_EQ(line.fOutxCtsFlow, flags >> 1 & 1u);
    EXPECT_EQ(line.fRtsControl, flags >> 1 & 1u ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE);
    EXPECT_EQ(line.fOutX, flags >> 2 & 1u);
    EXPECT_EQ(line.fInX, flags >> 2 & 1u);
  }
}

TEST(PortListWin32, ProbesAndListsWithoutAnyPort) {
  EXPECT_EQ(probe_port("COM77").error, OpenError::not_found);
  EXPECT_EQ(probe_port(R"(\\.\COM77)").error, OpenError::not_found);
  for (const PortInfo& port : list_ports()) EXPECT_GT(port.number, 0) << port.name;
}

}  // namespace
}  // namespace qv5123
