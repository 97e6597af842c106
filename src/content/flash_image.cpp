#include "content/flash_image.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "base/atomic_file.h"
#include "console/decimal_numbers.h"
#include "console/setting_format.h"

namespace qv5123 {

namespace {

void put(std::string& image, std::size_t offset, const std::optional<std::string>& file) {
  if (file) image.replace(offset, std::min(file->size(), flash::kFileLimit), *file, 0, flash::kFileLimit);
}

void put_user_data(std::string& image, const std::vector<std::uint8_t>& user) {
  std::ranges::copy(user, image.begin() + flash::kUserOffset);
  auto piece = user.begin();
  std::size_t sector = flash::kUserOffset;
  for (const auto size : flash::kUserPieces) {
    sector += flash::kSectorSize;
    std::copy_n(piece, size, image.begin() + static_cast<std::ptrdiff_t>(sector));
    piece += static_cast<std::ptrdiff_t>(size);
  }
}

/// Why a file does not fit its region; empty if it does, or if it cannot be read anyway.
std::string size_refusal(const char* label, const std::filesystem::path& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size <= flash::kFileLimit) return {};
  return std::string(label) + " too large: " + path_text(path) + " has " + std::to_string(size) +
         " bytes, the limit is " + std::to_string(flash::kFileLimit) + " bytes.";
}

/// The file's bytes; nothing if it cannot be read, which a remark tells.
std::optional<std::string> read_if_readable(const std::filesystem::path& path, const char* label,
                                            const char* region, std::vector<std::string>& remarks) {
  std::string bytes;
  const FileResult read = read_whole_file(path, bytes);
  if (read.ok()) return bytes;
  remarks.push_back(std::string(label) + ": " + read.text + ". Erased: " + region);
  return std::nullopt;
}

void remark_oddity(const FlashFiles& files, const std::string& text, std::vector<std::string>& remarks) {
  if (format_summary(text, flash::kUserSize).empty()) return;
  const std::string summary = format_summary(text);
  if (!summary.empty()) remarks.push_back("user file: " + path_text(files.user.filename()) + ": " + summary);
}

}  // namespace

std::string lay_out_flash(const FlashContent& content) {
  std::string image(flash::kImageSize, static_cast<char>(flash::kErased));
  put(image, flash::kFirmwareOffset, content.firmware);
  if (content.user_text) put_user_data(image, read_decimal_bytes(*content.user_text, flash::kUserSize));
  put(image, flash::kFontOffset, content.font);
  put(image, flash::kSecondFirmwareOffset, content.firmware);
  return image;
}

FlashBuild build_flash_image(const FlashFiles& files) {
  auto refusal = size_refusal("fw file", files.firmware);
  if (refusal.empty()) refusal = size_refusal("font file", files.font);
  if (!refusal.empty()) return {{}, refusal, {}};
  FlashBuild build;
  FlashContent content;
  content.firmware = read_if_readable(files.firmware, "fw file", "0x00000 and 0x30000", build.remarks);
  content.font = read_if_readable(files.font, "font file", "0x20000", build.remarks);
  content.user_text = read_if_readable(files.user, "user file", "0x10000 to 0x15000", build.remarks);
  if (content.user_text) remark_oddity(files, *content.user_text, build.remarks);
  build.image = lay_out_flash(content);
  return build;
}

}  // namespace qv5123
