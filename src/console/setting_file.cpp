#include "console/setting_file.h"

#include <algorithm>
#include <array>
#include <functional>
#include <system_error>
#include <utility>
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

namespace {

/// An image as read, and whether it was.
struct ReadImage {
  FileResult result;
  UserDataImage image;
};

Task<FileResult> take_over(Task<ReadImage> reading, UserDataImage& image) {
  const ReadImage read = co_await std::move(reading);
  if (read.image.loaded()) image = read.image;
  co_return read.result;
}

}  // namespace

Task<FileResult> read_setting_file(Background& background, std::filesystem::path path, UserDataImage& image) {
  std::function<ReadImage()> work = [path = std::move(path)] {
    ReadImage read;
    read.result = read_setting_file(path, read.image);
    return read;
  };
  return take_over(background.run<ReadImage>(std::move(work)), image);
}

Task<FileResult> write_setting_file(Background& background, std::filesystem::path path,
                                    const UserDataImage& image) {
  std::function<FileResult()> work = [path = std::move(path), image] {
    return write_setting_file(path, image);
  };
  return background.run<FileResult>(std::move(work));
}

Task<FileResult> reload_user_data_file(Background& background, UserDataImage& image,
                                       std::filesystem::path folder) {
  std::function<ReadImage()> work = [path = std::move(folder) / kUserDataFile] {
    ReadImage read;
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type != std::filesystem::file_type::not_found) read.result = read_setting_file(path, read.image);
    return read;
  };
  return take_over(background.run<ReadImage>(std::move(work)), image);
}

}  // namespace qv5123
