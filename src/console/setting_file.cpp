#include "console/setting_file.h"

#include <algorithm>
#include <array>
#include <functional>
#include <system_error>
#include <utility>
#include <vector>

#include "console/decimal_numbers.h"
#include "console/setting_format.h"

namespace qv5123 {

std::string setting_text(const UserDataImage& image) {
  std::string text;
  text.reserve(UserDataImage::kSize * 5);
  for (const std::uint8_t entry : image.bytes()) text += std::to_string(entry) + "\r\n";
  return text;
}

UserDataImage image_of(std::string_view text) {
  const std::vector<std::uint8_t> numbers = read_decimal_bytes(text, UserDataImage::kSize);
  std::array<std::uint8_t, UserDataImage::kSize> bytes{};
  std::copy(numbers.begin(), numbers.end(), bytes.begin());
  UserDataImage image;
  image.assign(bytes);
  image.mark_loaded();
  return image;
}

ReadSettings read_setting_file(const std::filesystem::path& path) {
  ReadSettings read;
  std::string text;
  read.result = read_whole_file(path, text, kSettingFileLimit);
  if (!read.result.ok()) return read;
  read.image = image_of(text);
  const std::string summary = format_summary(text);
  if (!summary.empty()) read.oddity = path_text(path.filename()) + ": " + summary;
  read.text = std::move(text);
  return read;
}

namespace {

Task<ReadSettings> take_over(Task<ReadSettings> reading, UserDataImage& image) {
  ReadSettings read = co_await std::move(reading);
  if (read.image.loaded()) image = read.image;
  co_return read;
}

}  // namespace

Task<ReadSettings> read_setting_file(Background& background, std::filesystem::path path) {
  std::function<ReadSettings()> work = [path = std::move(path)] { return read_setting_file(path); };
  return background.run<ReadSettings>(std::move(work));
}

Task<ReadSettings> reload_user_data_file(Background& background, UserDataImage& image,
                                         std::filesystem::path folder) {
  std::function<ReadSettings()> work = [path = folder / kUserDataFile] {
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    return type == std::filesystem::file_type::not_found ? ReadSettings() : read_setting_file(path);
  };
  return take_over(background.run<ReadSettings>(std::move(work)), image);
}

}  // namespace qv5123
