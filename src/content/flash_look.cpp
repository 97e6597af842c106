#include "content/flash_look.h"

#include <algorithm>
#include <cstdint>
#include <system_error>

#include "base/atomic_file.h"
#include "base/hex.h"
#include "base/text.h"
#include "console/setting_file.h"
#include "console/version_box.h"
#include "content/flash_inspection.h"
#include "content/font_library.h"
#include "content/image_version.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

struct Looked {
  std::string text;
  std::size_t bytes = 0;
};

std::string of_bytes(std::uintmax_t bytes, std::size_t limit) {
  return std::to_string(bytes) + " of " + std::to_string(limit) + " bytes";
}

Looked look_at_binary(const std::string& what, const fs::path& path) {
  if (path.empty()) return {what + ": no file chosen"};
  const std::string named = what + ": " + path_text(path.filename());
  std::error_code error;
  const std::uintmax_t bytes = fs::file_size(path, error);
  if (error) return {named + " cannot be read, erased"};
  if (bytes > flash::kFileLimit) return {named + " is too large, " + of_bytes(bytes, flash::kFileLimit)};
  return {named + ", " + of_bytes(bytes, flash::kFileLimit), static_cast<std::size_t>(bytes)};
}

std::string versions_of(const UserDataImage& image) {
  std::string text;
  for (int slot = 0; slot < kVersionSlots; ++slot) {
    const VersionNumbers numbers = load_version(image, slot);
    text += std::string(slot == 0 ? ", " : "  ") + kVersionSlotNames[slot] + " " +
            std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." + std::to_string(numbers[2]);
  }
  return text;
}

Looked look_at_user(const fs::path& path) {
  if (path.empty()) return {"user data: no file chosen"};
  const std::string named = "user data: " + path_text(path.filename());
  std::string text;
  if (!read_whole_file(path, text).ok()) return {named + " cannot be read, erased"};
  return {named + versions_of(image_of(text)), flash::kUserSize};
}

std::string crc_text(const FlashInspection& inspection, std::size_t offset) {
  for (const FlashRegion& region : inspection.regions)
    if (region.offset == offset) return ", CRC-32 " + upper_hex(region.crc32, 8);
  return {};
}

std::string version_text(std::string_view bytes) {
  const std::string version = version_in_image(bytes);
  return version.empty() ? "" : ", \"" + version + "\"";
}

/// Whether a remark is about a file that somebody chose.
bool is_about_chosen(const std::string& remark, const FlashFiles& files) {
  if (remark.starts_with("fw file")) return !files.firmware.empty();
  return remark.starts_with("font file") ? !files.font.empty() : !files.user.empty();
}

void add_user(FlashLook& look, const Looked& user) {
  look.places.push_back({flash::kUserOffset, flash::kUserSize, user.bytes, user.text});
  std::size_t sector = flash::kUserOffset;
  for (std::size_t i = 0; i < flash::kUserPieces.size(); ++i) {
    sector += flash::kSectorSize;
    const std::size_t size = flash::kUserPieces[i];
    look.places.push_back(
        {sector, size, user.bytes == 0 ? 0 : size,
         "user data again, piece " + std::to_string(i + 1) + ": " + std::to_string(size) + " bytes"});
  }
}

}  // namespace

FlashLook look_at_flash(const FlashFiles& files) {
  Looked firmware = look_at_binary("firmware", files.firmware);
  Looked font = look_at_binary("font", files.font);
  const Looked user = look_at_user(files.user);
  const FlashBuild build = build_flash_image(files);
  FlashLook look;
  if (build.ok()) {
    const FlashInspection inspection = inspect_flash_image(build.image);
    const auto describe = [&](Looked& file, std::size_t offset) {
      if (file.bytes == 0) return;
      file.text += version_text(std::string_view(build.image).substr(offset, file.bytes));
      file.text += crc_text(inspection, offset);
    };
    describe(firmware, flash::kFirmwareOffset);
    describe(font, flash::kFontOffset);
  } else {
    look.remarks.push_back(build.refusal);
  }
  look.places.push_back({flash::kFirmwareOffset, flash::kFileLimit, firmware.bytes, firmware.text});
  add_user(look, user);
  look.places.push_back({flash::kFontOffset, flash::kFileLimit, font.bytes, font.text});
  const std::string again = firmware.bytes > 0 ? ": the same bytes" : ": erased";
  look.places.push_back(
      {flash::kSecondFirmwareOffset, flash::kFileLimit, firmware.bytes, "firmware again" + again});
  for (const std::string& remark : build.remarks)
    if (is_about_chosen(remark, files)) look.remarks.push_back(remark);
  return look;
}

FlashFile flash_file_kind(const fs::path& path) {
  if (lower_case(path_text(path.extension())) == ".dat") return FlashFile::user;
  std::error_code error;
  const std::uintmax_t bytes = fs::file_size(path, error);
  const bool is_font = (!error && bytes == FontLibrary::kBinarySize) ||
                       lower_case(path_text(path.filename())).find("font") != std::string::npos;
  return is_font ? FlashFile::font : FlashFile::firmware;
}

}  // namespace qv5123
