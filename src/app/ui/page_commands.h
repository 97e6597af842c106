#pragma once

#include <array>

#include "app/ui/pages.h"

namespace qv5123 {

/// A key that only a part of the window has. Nobody may have opened that part yet.
struct PartKey {
  const char* keys;   ///< as QKeySequence writes them
  const char* text;   ///< its action's
  const char* where;  ///< for the user
};

inline constexpr std::array<PartKey, 14> kPartKeys = {{
    {"Ctrl+C", "Copy picture and numbers", "charts"},
    {"+", "Enlarge", "charts"},
    {"-", "Make smaller", "charts"},
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

/// What a page's buttons do, by the names that assistive tools read out, with '|' between them. Nobody may
/// have opened the page yet.
struct PageCommands {
  PageId page;
  const char* names;
};

inline constexpr std::array<PageCommands, kPageEntries.size()> kPageCommands = {{
    {PageId::registers,
     "Read|Write|Load From ISP|Load All From ISP|Stop reading registers|Save REG to File...|"
     "Load REG from File to ISP...|Write REG to Flash"},
    {PageId::isp_tune,
     "Polarity -|Polarity +|Get Info|Write(1Byte)|Read(1Byte)|Write(2Byte)|Read(2Byte)|Sensor Write|"
     "Sensor Read|Dump|Load Isp|File/Flash Save"},
    {PageId::gamma, "Apply|Clear|Load <- File|Load <- ISP|File/Flash Save"},
    {PageId::lsc,
     "UP|LEFT|CALIBRATION|RIGHT|DOWN|Check field|Clear|Load <- File|Load <- ISP|File/Flash Save"},
    {PageId::awb_tune,
     "UP|LEFT|GET COLOR|RIGHT|DOWN|None|Set|Check|Measure 18|From LinearMatrix|"
     "Load <- File|Load <- ISP|File/Flash Save"},
    {PageId::linear_matrix,
     "UP|LEFT|GET COLOR|RIGHT|DOWN|Set corner|Measure all 24|Copy matrix to...|Calculate|Clear|"
     "Fit color difference|Load <- File|Load <- ISP|File/Flash Save"},
    {PageId::dynamic_control, "Clear|Load <- File|Load <- ISP|File/Flash Save"},
    {PageId::font_editor,
     "Open font file...|Save font file...|Clear|Set|Undo|Redo|Copy|Paste|Shift left|Shift right|Shift up|"
     "Shift down|Invert|Fill glyphs|Compare with...|Take over|Export sheet...|Import sheet..."},
    {PageId::make_flash, "Choose fw file|Choose font file|Choose user file|Make Serial Flash FILE"},
    {PageId::compare,
     "Chip -> Page|File -> Page|Further -> Page|Page -> Chip...|Copy|Save CSV...|Read all from ISP|Cancel"},
}};

}  // namespace qv5123
