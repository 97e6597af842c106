#pragma once

#include <cstdint>

namespace qv5123 {

/// What a tuning page says.
struct DeskTexts {
  const char* name;         ///< for files and the command line
  std::uint8_t trigger;     ///< a write of 0 to this register asks for the page's reply
  const char* failed;       ///< status when no reply came, or one that is damaged or ends too early
  const char* loaded;       ///< status otherwise; none when empty
  const char* loaded_file;  ///< status of "Load <- File"
};

}  // namespace qv5123
