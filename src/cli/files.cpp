#include "cli/files.h"

#include "cli/complaint.h"
#include "console/atomic_file.h"
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

UserDataImage read_settings(const std::filesystem::path& path) {
  UserDataImage image;
  check(read_setting_file(path, image));
  return image;
}

}  // namespace qv5123
