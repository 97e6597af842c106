#include "console/setting_file_keeper.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "base/lock_file.h"

namespace qv5123 {
namespace {

/// Longer than any of our programs takes to change a file.
constexpr std::chrono::seconds kLockPatience{2};

}  // namespace

std::filesystem::path copy_beside(std::filesystem::path path) {
  path += "~";
  return path;
}

SettingFileKeeper::File& SettingFileKeeper::file(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error).lexically_normal();
  return files_[error ? path : absolute];
}

ReadSettings SettingFileKeeper::load(const std::filesystem::path& path) {
  ReadSettings read = read_setting_file(path);
  if (!read.result.refused) file(path) = {true, read.text, read.text.has_value()};
  return read;
}

// Whatever it holds is something else than what that run knew.
void SettingFileKeeper::remember(const std::filesystem::path& path, bool changed) {
  file(path) = {changed, std::nullopt, true};
}

Replaced SettingFileKeeper::replace(const std::filesystem::path& path, const UserDataImage& image,
                                    bool whatever_it_holds) {
  Replaced replaced;
  File& known = file(path);
  // Where no lock can be made, as in a folder of which only this file may be written, it must do without.
  const FileLock lock = lock_beside(path, kLockPatience);
  const ReadSettings there = read_setting_file(path);
  const std::string text = setting_text(image);
  // A file that is gone, or holds what is to be written, has nothing to lose.
  if (there.text && *there.text != text) {
    if (known.known && !whatever_it_holds) {
      replaced.changed = there.text != known.text;
      replaced.oddity = there.oddity;
      if (!replaced.written()) return replaced;
    }
    if (known.copy_wanted) {
      replaced.copy_trouble = write_file_atomically(copy_beside(path), *there.text).text;
      replaced.copied = replaced.copy_trouble.empty();
    }
  }
  replaced.result = write_file_atomically(path, text);
  if (!replaced.result.ok()) return replaced;
  // What was written over without a change is still the file as it was.
  known = {true, text, known.copy_wanted && there.text == text};
  return replaced;
}

}  // namespace qv5123
