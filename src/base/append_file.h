#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace qv5123 {

/// What stands behind the last line end of a file that lines are appended to.
enum class Tail {
  whole,    ///< a line that lacks no more than its end, which it gets
  cut,      ///< what is left of a line whose writer died; it goes
  foreign,  ///< something that was never such a line; the file is left as it is
};
using TailJudge = std::function<Tail(std::string_view tail)>;

/// Appends `lines`, each with its line end, to the file, which is made where it is missing, and returns once
/// they are on the disk. What `judge` says becomes of what earlier writers left behind the last line end; it
/// is asked where there is something. Lines that do not fit are taken back. Without lines the file is only
/// tried. Who may append at the same time holds a lock, see lock_beside(). The error is in words, empty on
/// success.
std::string append_lines(const std::filesystem::path& path, std::string_view lines, const TailJudge& judge);

}  // namespace qv5123
