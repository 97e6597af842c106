#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "link/serial_device.h"

namespace qv5123 {

struct PortInfo {
  /// The COM port's number; on other systems the number at the end of the device's name. Negative for what is
  /// no port of this computer.
  int number = 0;
  std::string device;  ///< what SerialDevice::open() takes
  std::string name;    ///< what to show, in words
  friend bool operator==(const PortInfo&, const PortInfo&) = default;
};

/// The serial ports that are there now, real ones only.
std::vector<PortInfo> list_ports();

/// Tells whether `device` can be opened, without changing its line. On Linux a port that this program itself
/// holds counts as free, because it will be closed before it is opened anew; Windows refuses it as busy.
OpenResult probe_port(const std::string& device);

/// What Windows knows about one device of its ports class.
struct PortProperties {
  std::string class_name;
  unsigned long problem = 0;  ///< the device node's problem code, 0 none, 22 disabled
  std::string friendly_name;
  std::string port_name;
};

/// The list entry for a Windows device; none unless it is an enabled COM port.
std::optional<PortInfo> port_from_properties(const PortProperties& properties);

/// The name under which Windows opens COM port `port`: "COM%d" below 10, "\\.\COM%d" from 10, because the
/// short form is only known for single digits.
std::string comm_device_name(int port);

/// What Windows opens for a name that a person types: comm_device_name() for "COM" and a number alone, in any
/// case and also behind "\\.\"; every other name as it is. One port has one such name.
std::string openable_name(const std::string& name);

/// The number that follows the first "COM" in `name`; none when there is no "COM", no number after it, or
/// the number is beyond int.
std::optional<int> port_number_from_name(std::string_view name);

/// A USB adapter keeps a short answer back until its latency timer runs out, usually 16 ms, since more might
/// come. The timer of the adapter behind a port; nothing where the system tells of none. Reads files: not for
/// the user interface's thread.
std::optional<std::chrono::milliseconds> adapter_latency(const std::string& device);

/// How to lower it on this system, in words.
std::string lower_latency_text(const std::string& device);

}  // namespace qv5123
