#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "link/serial_device.h"

namespace qv5123 {

/// The application's settings of the serial port, as kept in the section "COMSetting".
struct PortSettings {
  int number = 1;           ///< COM port number, 1..256
  std::string device;       ///< what SerialDevice::open() takes; empty stands for COM<number>
  LineSettings line;        ///< 19200 baud, 8 data bits, no parity, 1 stop bit, no flow control
  std::string description;  ///< the port's friendly name
  /// Non-zero: the port dialog is not forced even if the stored port cannot be opened.
  int debug = 0;
  friend bool operator==(const PortSettings&, const PortSettings&) = default;
};

inline constexpr const char* kPortSection = "COMSetting";
inline constexpr const char* kPortNumberKey = "PortNumber";
inline constexpr const char* kPortDeviceKey = "PortDevice";
inline constexpr const char* kPortDescriptionKey = "PortDescription";
inline constexpr const char* kDebugKey = "Debug";

/// The numbers of the section by name: "PortNumber", "BaudRate", "DataBits", "Parity", "StopBits",
/// "FlowFlags" and, read only, "Debug".
using StoredNumbers = std::map<std::string, long long>;

/// Settings out of what is stored. What is missing or makes no sense takes its default; the baud rate is
/// never 0. A device that is the COM port of another number than the one stored gives way to the number, and
/// its description with it.
PortSettings port_settings_from(const StoredNumbers& numbers, std::string device, std::string description);
/// What is stored after "Open"; "Debug" is not among it.
StoredNumbers stored_numbers(const PortSettings& settings);

/// The port as texts name it: its device where that is a path, "COM%d" otherwise.
std::string shown_port(const PortSettings& settings);

// Texts of the console.
std::string port_open_text(const PortSettings& settings);  ///< "COM%d open ! \r\n"
std::string port_fail_text(const PortSettings& settings);  ///< "COM%d open fail \r\n"
inline constexpr const char* kSerialClosedText = "Serial closed ..\r\n";
// Texts of message boxes.
inline constexpr const char* kSerialOpenFail = "Serial open Fail..";
std::string port_probe_fail_text(const PortSettings& settings);  ///< "Port COM%d open failed!"

// The lists of the port dialog, in the order of their positions.
inline constexpr const char* kBaudRateLabels[] = {"2400",  "4800",  "9600",   "19200",
                                                  "38400", "57600", "115200", "230400"};
inline constexpr const char* kDataBitsLabels[] = {"5", "6", "7", "8"};
inline constexpr const char* kParityLabels[] = {"none", "odd", "even", "mark", "space"};
inline constexpr const char* kStopBitsLabels[] = {"1", "2"};

/// What is selected in the port dialog: list positions, -1 for none, and check boxes.
struct PortSelection {
  int baud_rate = 3;
  int data_bits = 3;
  int parity = 0;
  int stop_bits = 0;
  bool dtr_dsr = false;
  bool rts_cts = false;
  bool xon_xoff = false;
  friend bool operator==(const PortSelection&, const PortSelection&) = default;
};

/// The line that a selection stands for. The baud list's last position shows 230400 and stands for 128000;
/// the stop bit code is the list position, so "2" is the code for one and a half.
LineSettings line_from(const PortSelection& selection);
/// The selection that shows a line best; a baud rate that the list does not have is shown as 19200.
PortSelection selection_of(const LineSettings& line);

}  // namespace qv5123
