#include "cli/files.h"

#include <chrono>

#include "base/atomic_file.h"
#include "cli/complaint.h"
#include "console/decimal_numbers.h"
#include "console/setting_file.h"
#include "console/setting_format.h"

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

FileLock lock_for_change(const std::filesystem::path& path) {
  // Longer than another command takes to change the file.
  constexpr std::chrono::seconds kPatience{5};
  FileLock lock = lock_beside(path, kPatience);
  if (lock.busy) refuse(path_text(path) + " is being changed by another program");
  return lock;
}

bool holds_settings(std::string_view text) {
  std::uint32_t number = 0;
  return DecimalReader(text).read(number);
}

UserDataImage read_settings(Output& out, const std::filesystem::path& path) {
  const std::string text = read_file(path, kSettingFileLimit);
  if (!holds_settings(text)) refuse(path_text(path) + " holds no settings");
  const std::string oddity = format_summary(text);
  if (!oddity.empty()) out.warning(path_text(path) + ": " + oddity);
  return image_of(text);
}

void check_settings_text(const std::filesystem::path& path, std::string_view text, std::size_t count,
                         bool lenient) {
  if (lenient) return;
  const std::string oddity = format_summary(text, count);
  if (!oddity.empty()) refuse(path_text(path) + ": " + oddity);
}

UserDataImage read_whole_settings(const std::filesystem::path& path, bool lenient) {
  const std::string text = read_file(path, kSettingFileLimit);
  check_settings_text(path, text, UserDataImage::kSize, lenient);
  return image_of(text);
}

RegDescription load_description(Output& out, const std::filesystem::path& given) {
  const std::filesystem::path path = given.empty() ? "regu.xml" : given;
  RegDescription description = RegDescription::load(path, path_text(path));
  const bool missing = description.problem == RegDescription::kNotFound;
  if (missing && !given.empty()) refuse("Cannot read the description " + path_text(path));
  if (!description.problem.empty()) refuse(description.problem);
  if (description.registers.empty()) refuse(path_text(path) + " describes no registers");
  if (!description.remark.empty()) out.warning(description.remark);
  return description;
}

}  // namespace qv5123
