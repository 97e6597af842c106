#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv5123 {

/// The name under which Windows opens COM port `port`: "COM%d" below 10, "\\.\COM%d" from 10, because the
/// short form is only known for single digits.
std::string comm_device_name(int port);

/// What Windows opens for a name that a person types: comm_device_name() for "COM" and a number alone, in any
/// case and also behind "\\.\"; every other name as it is. One port has one such name.
std::string openable_name(const std::string& name);

/// The number that follows the first "COM" in `name`; none when there is no "COM", no number after it, or
/// the number is beyond int.
std::optional<int> port_number_from_name(std::string_view name);

}  // namespace qv5123
