#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "console/setting_file.h"

namespace qv5123 {

/// What came of replacing a setting file.
struct Replaced {
  FileResult result;
  bool changed = false;      ///< not written: it holds something else than this run read or wrote last
  std::string oddity;        ///< not written: it is no whole setting file; what is odd about it
  bool copied = false;       ///< the file as it was is beside it
  std::string copy_trouble;  ///< why it is not, though it should be
  bool written() const { return result.ok() && !changed && oddity.empty(); }
};

/// What a run knows of the setting files that it read and wrote, and looks at before it writes over one of
/// them. Slow, and for one thread: that of a Background.
class SettingFileKeeper {
 public:
  ReadSettings load(const std::filesystem::path& path);
  /// An earlier run loaded the file, and this one goes on with its values. `changed`: it was written since.
  void remember(const std::filesystem::path& path, bool changed);
  /// Replaces the file in one step, as far as other programs of ours go. A file that was loaded is kept
  /// beside it the first time. `whatever_it_holds`: also where it was changed, or is no setting file.
  Replaced replace(const std::filesystem::path& path, const UserDataImage& image, bool whatever_it_holds);

 private:
  struct File {
    bool known = false;               ///< whether `text` counts
    std::optional<std::string> text;  ///< nothing: it was not there
    bool copy_wanted = false;         ///< it is somebody's work that this run has not written over yet
  };
  File& file(const std::filesystem::path& path);

  std::map<std::filesystem::path, File> files_;  // by absolute path
};

/// Where a file as it was is kept: "board.dat~" for "board.dat".
std::filesystem::path copy_beside(std::filesystem::path path);

}  // namespace qv5123
