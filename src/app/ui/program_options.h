#pragma once

#include <QSize>
#include <QStringList>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "link/serial_device.h"

namespace qv5123 {

struct ProgramOptions {
  std::optional<std::string> port;   ///< use this device, store no settings but the window's look
  LineSettings line;                 ///< of that device; 19200 8N1 unless options say otherwise
  bool simulate = false;             ///< the simulated chip, store no settings but the window's look
  std::optional<std::string> scene;  ///< what the simulated camera looks at
  std::optional<std::filesystem::path> setting_file;  ///< load it instead of offering the dialog
  std::optional<std::filesystem::path> trace;         ///< gets every byte both ways
  std::optional<std::filesystem::path> tour;          ///< the folder for the tour's pictures
  QSize tour_size{1280, 800};                         ///< of the window in them
  bool check_layout = false;                          ///< the tour complains of what does not fit
  bool dark = false;                                  ///< dark colours, whatever the desktop has
};

/// The program is to print `text` and end: help and version on the standard output with 0, a complaint of one
/// line on the standard error with 2.
struct EndAtOnce {
  QString text;
  int exit_code = 0;
};

/// Reads the command line, the program's name included. A setting file must exist; a folder for the tour is
/// made. Without a port the tour runs on the simulated chip. The window toolkit's own options, such as
/// "-platform offscreen", are left to the application object. Needs one for the help.
std::variant<ProgramOptions, EndAtOnce> read_options(const QStringList& arguments);

}  // namespace qv5123
