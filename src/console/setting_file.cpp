#include "console/setting_file.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <vector>

#include "console/decimal_numbers.h"

namespace qv5123 {

std::string setting_text(const UserDataImage& image) {
  std::string text;
  text.reserve(UserDataImage::kSize * 5);
  for (const std::uint8_t entry : image.bytes()) text += std::to_string(entry) + "\r\n";
  return text;
}

FileResult read_setting_file(const std::filesystem::path& path, UserDataImage& image) {
  std::string text;
  FileResult result = read_whole_file(path, text, kSettingFileLimit);
  if (!result.ok()) return result;
  const std::vector<std::uint8_t> numbers = read_decimal_bytes(text, UserDataImage::kSize);
  std::array<std::uint8_t, UserDataImage::kSize> bytes{};
  std::copy(numbers.begin(), numbers.end(), bytes.begin());
  image.assign(bytes);
  image.mark_loaded();
  return result;
}

FileResult write_setting_file(const std::filesystem::path& path, const UserDataImage& image) {
  return write_file_atomically(path, setting_text(image));
}

FileResult reload_user_data_file(UserDataImage& image, const std::filesystem::path& folder) {
  const std::filesystem::path path = folder / kUserDataFile;
  std::error_code error;
  const auto type = std::filesystem::status(path, error).type();
  if (type == std::filesystem::file_type::not_found) return {};
  return read_setting_file(path, image);
}

}  // namespace qv5123
