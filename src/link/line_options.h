#pragma once

#include <string>
#include <string_view>

#include "link/serial_device.h"

namespace qv5123 {

/// An option of the programs that says how the line of "--port" is set up.
struct LineOption {
  const char* name;   ///< without its dashes
  const char* value;  ///< what stands for its value in the help
  const char* help;
};
inline constexpr LineOption kLineOptions[] = {
    {"baud", "RATE", "Bits per second (default 19200)"},
    {"data-bits", "N", "Data bits, 5 to 8 (default 8)"},
    {"parity", "KIND", "none, odd, even, mark or space (default none)"},
    {"stop-bits", "N", "1, 1.5 or 2 (default 1)"},
    {"flow", "KINDS", "none, or some of DTR/DSR,RTS/CTS,XON/XOFF (default none)"},
};

/// Sets what the option `name` of kLineOptions stands for. Returns what is wrong with the text, in words;
/// empty when nothing is. Unlike the port dialog's lists, what is typed is what the line gets.
std::string take_line_option(std::string_view name, std::string_view text, LineSettings& line);

}  // namespace qv5123
