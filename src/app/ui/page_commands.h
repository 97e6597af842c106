#pragma once

#include <array>

namespace qv5123 {

/// A key that only a part of the window has. Nobody may have opened that part yet.
struct PartKey {
  const char* keys;   ///< as QKeySequence writes them
  const char* text;   ///< its action's
  const char* where;  ///< for the user
};

inline constexpr std::array<PartKey, 12> kPartKeys = {{
    {"Ctrl+C", "Copy picture and numbers", "charts"},
    {"0", "Show all of it", "charts"},
    {"Ctrl+C", "Copy", "lists, FontEditor"},
    {"Ctrl+V", "Paste", "FontEditor"},
    {"Ctrl+I", "Invert", "FontEditor"},
    {"Ctrl+Left", "Shift left", "FontEditor"},
    {"Ctrl+Right", "Shift right", "FontEditor"},
    {"Ctrl+Up", "Shift up", "FontEditor"},
    {"Ctrl+Down", "Shift down", "FontEditor"},
    {"Ctrl+W", "Close", "FontEditor"},
    {"Alt+Left", "Back", "help"},
    {"Esc", "Close", "help"},
}};

}  // namespace qv5123
