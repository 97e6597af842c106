#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "link/open_port_posix.h"
#include "link/port_list_posix.h"
#include "link/serial_device.h"
#include "link/serial_line_posix.h"
#include "support/program.h"
#include "support/pty_line_posix.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

constexpr tcflag_t kFrame = CSIZE | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS;

/// What a driver may hold that nothing of the line may keep, and one flag that is the driver's own.
termios2 used_line() {
  termios2 line{};
  line.c_iflag = ICRNL | IXANY | ISTRIP | IXON | IUTF8;
  line.c_oflag = OPOST | ONLCR;
  line.c_lflag = ICANON | ECHO | ISIG;
  line.c_cflag = CS7 | PARENB | PARODD | CSTOPB | CRTSCTS | HUPCL | B9600;
  return line;
}

termios2 line_for(const LineSettings& settings) {
  termios2 line = used_line();
  set_up_line(line, settings);
  return line;
}

TEST(SerialLinePosix, IsRawOfEveryFrameAndFlowAndKeepsWhatTheSettingsDoNotSpeakOf) {
  const termios2 line = line_for({});
  EXPECT_EQ(line.c_iflag, tcflag_t{IUTF8});
  EXPECT_EQ(line.c_lflag, 0u);
  EXPECT_EQ(line.c_oflag & OPOST, 0u);
  EXPECT_EQ(line.c_cflag & kFrame, tcflag_t{CS8});
  EXPECT_EQ(line.c_cflag & (HUPCL | CREAD | CLOCAL), tcflag_t{HUPCL | CREAD | CLOCAL});
  EXPECT_EQ(line.c_cflag & CBAUD, tcflag_t{BOTHER});
  EXPECT_EQ(line.c_ospeed, 19200u);
  EXPECT_EQ(line.c_ispeed, 19200u);
  EXPECT_EQ(line.c_cc[VMIN], 1);
  EXPECT_EQ(line.c_cc[VTIME], 0);
  EXPECT_EQ(line_for({.data_bits = 5, .stop_bits = 1}).c_cflag & kFrame, tcflag_t{CS5 | CSTOPB});
  EXPECT_EQ(line_for({.parity = 1}).c_cflag & kFrame, tcflag_t{CS8 | PARENB | PARODD});
  EXPECT_EQ(line_for({.parity = 3}).c_cflag & kFrame, tcflag_t(CS8 | PARENB | PARODD | CMSPAR));
  EXPECT_EQ(line_for({.flow_flags = 2}).c_cflag & kFrame, tcflag_t(CS8 | CRTSCTS));
  const termios2 soft = line_for({.flow_flags = 4});
  EXPECT_EQ(soft.c_iflag, tcflag_t{IXON | IXOFF | IUTF8});
  EXPECT_EQ(soft.c_cc[VSTART], 0x11);
  EXPECT_EQ(soft.c_cc[VSTOP], 0x13);
}

TEST(SerialLinePosix, TellsWhatTheDriverDidNotTake) {
  const termios2 wanted = line_for({.parity = 3});
  const auto refused = [&](auto change) {
    termios2 got = wanted;
    change(got);
    return refused_settings(wanted, got);
  };
  EXPECT_EQ(refused([](termios2& got) { got.c_ospeed = 19230; }), "") << "a divisor is never exact";
  EXPECT_EQ(refused([](termios2& got) { got.c_ospeed = 9600; }), "it does not do 19200 baud");
  EXPECT_EQ(refused([](termios2& got) { got.c_cflag &= ~CMSPAR; }), "it does not do that parity");
}

class PosixPorts : public testing::Test {
 protected:
  void put(const fs::path& path, const std::string& text) const {
    fs::create_directories((root_ / path).parent_path());
    std::ofstream(root_ / path) << text << "\n";
  }
  /// A tty of the class, as the kernel has it: a link into the device's own folder.
  void add_tty(const std::string& name, const fs::path& device) const {
    const fs::path folder = root_ / device / "tty" / name;
    fs::create_directories(folder);
    fs::create_directory_symlink(root_ / device, folder / "device");
    fs::create_directories(root_ / "sys/class/tty");
    fs::create_directory_symlink(folder, root_ / "sys/class/tty" / name);
  }

  const test::TemporaryFolder folder_;
  const fs::path root_ = folder_.path();
};

TEST_F(PosixPorts, ListsRealOnesWithTheirProductNames) {
  const fs::path usb = "sys/devices/pci0/usb1/1-2";
  put(usb / "product", "Bridge UART ");
  add_tty("ttyUSB10", usb / "1-2:1.0/ttyUSB10");
  add_tty("ttyUSB2", usb / "1-2:1.1/ttyUSB2");
  add_tty("ttyACM0", "sys/devices/pci0/usb2/2-1/2-1:1.0");
  put("sys/class/tty/ttyACM0/dev", "166:0");
  put("run/udev/data/c166:0", "S:serial/by-id/x\nE:ID_MODEL=Eval_Board");
  add_tty("ttyS4", "sys/devices/pci0/card");
  put("sys/class/tty/ttyS4/type", "4");
  put("sys/class/tty/ttyS4/dev", "4:68");
  put("run/udev/data/c4:68", "E:ID_MODEL=0x9900\nE:ID_MODEL_FROM_DATABASE=Quad serial card");
  add_tty("ttyS0", "sys/devices/platform/serial8250");
  put("sys/class/tty/ttyS0/type", "0");  // a placeholder
  EXPECT_EQ(list_ports_below(root_), (std::vector<PortInfo>{
                                         {0, "/dev/ttyACM0", "Eval Board (/dev/ttyACM0)"},
                                         {4, "/dev/ttyS4", "Quad serial card (/dev/ttyS4)"},
                                         {2, "/dev/ttyUSB2", "Bridge UART (/dev/ttyUSB2)"},
                                         {10, "/dev/ttyUSB10", "Bridge UART (/dev/ttyUSB10)"},
                                     }));
}

TEST_F(PosixPorts, AnAdaptersLatencyTimerIsFoundBehindLinks) {
  put("sys/bus/usb-serial/devices/ttyUSB2/latency_timer", "16\n");
  put("dev/ttyUSB2", "");
  fs::create_symlink(root_ / "dev/ttyUSB2", root_ / "dev/board");
  EXPECT_EQ(adapter_latency_below(root_, root_ / "dev/board"), std::chrono::milliseconds(16));
  EXPECT_EQ(adapter_latency_below(root_, "/dev/ttyACM0"), std::nullopt);
}

TEST_F(PosixPorts, ErrorsSayWhatIsWrongWithTheDevice) {
  put("file", "text");
  const std::string file = root_ / "file";
  const auto device = make_serial_device();
  EXPECT_EQ(device->open(file, {}).text, file + " is not a serial port. Choose one from the list of ports.");
  EXPECT_EQ(device->open("/dev/null", {}).error, OpenError::not_a_port);
  EXPECT_EQ(device->open("", {}).text, "No port is chosen. Choose one from the list of ports.");
  fs::permissions(file, fs::perms(0600));
  EXPECT_EQ(system_error(EACCES, file).text,
            "No permission to use the port " + file + ". Ask the administrator of this computer for it.");
  fs::permissions(file, fs::perms(0660));
  EXPECT_NE(system_error(EACCES, file).text.find(": run \"sudo usermod -aG "), std::string::npos);
}

TEST_F(PosixPorts, AHolderThatDoesNotLockIsFoundAndNamedAndThisProgramHoldsUpNobody) {
  const std::string link = root_ / "port";
  PtyLine line(link);
  test::Program holder("/bin/sh", {"-c", "exec 3<>\"$0\"; echo $$; read end", link});
  const std::string process = holder.line();
  const OpenResult opened = make_serial_device()->open(link, {});
  EXPECT_EQ(opened.error, OpenError::busy);
  EXPECT_NE(opened.text.find("(process " + process + ")"), std::string::npos) << opened.text;
  EXPECT_EQ(probe_port(link).text, opened.text);
  holder.type("\n");
  EXPECT_EQ(holder.end(), 0);
  const auto device = make_serial_device();
  ASSERT_TRUE(device->open(link, {}).ok()) << "it has ended";
  EXPECT_TRUE(probe_port(link).ok());
  line.hang_up();
  EXPECT_EQ(probe_port(link).error, OpenError::not_found);
}

}  // namespace
}  // namespace qv5123
