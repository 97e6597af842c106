#include "cli/files.h"

#include "base/atomic_file.h"
#include "cli/complaint.h"
#include "console/decimal_numbers.h"
#include "console/setting_file.h"

namespace qv5123 {
namespace {

void check(const FileResult& result) {
  if (!result.ok()) refuse(result.text);
}

}  // namespace

std::string read_file(const std::filesystem::path& path, std::uintmax_t limit) {
  std::string bytes;
  check(read_whole_file(path, bytes, limit));
  return bytes;
}

void write_file(const std::filesystem::path& path, std::string_view bytes) {
  check(write_file_atomically(path, bytes));
}

bool holds_settings(std::string_view text) {
  std::uint32_t number = 0;
  return DecimalReader(text).read(number);
}

UserDataImage read_settings(const std::filesystem::path& path) {
  if (!holds_settings(read_file(path, kSettingFileLimit))) refuse(path_text(path) + " holds no settings");
  UserDataImage image;
  check(read_setting_file(path, image));
  return image;
}

}  // namespace qv5123
