#include "content/flash_inspection.h"

#include <array>

#include "content/flash_image.h"

namespace qv5123 {
namespace {

constexpr std::array<std::uint32_t, 256> crc_table() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t crc = i;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? 0xEDB88320u ^ crc >> 1 : crc >> 1;
    table[i] = crc;
  }
  return table;
}

std::uint32_t crc32(std::string_view bytes) {
  static constexpr std::array<std::uint32_t, 256> kTable = crc_table();
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char byte : bytes) crc = kTable[(crc ^ static_cast<unsigned char>(byte)) & 0xFF] ^ crc >> 8;
  return ~crc;
}

FlashRegion region(std::string_view image, const std::string& name, std::size_t offset, std::size_t size) {
  const std::string_view bytes = image.substr(offset, size);
  const std::size_t used = bytes.find_last_not_of(static_cast<char>(flash::kErased)) + 1;
  return {name, offset, size, used, crc32(bytes.substr(0, used))};
}

/// The user data as its pieces, each in a sector of its own, hold it.
std::string pieces_joined(std::string_view image) {
  std::string user;
  std::size_t sector = flash::kUserOffset;
  for (const std::size_t size : flash::kUserPieces) {
    sector += flash::kSectorSize;
    user += image.substr(sector, size);
  }
  return user;
}

std::string_view whole_user_data(std::string_view image) {
  return image.substr(flash::kUserOffset, flash::kUserSize);
}

}  // namespace

FlashInspection inspect_flash_image(std::string_view image) {
  FlashInspection inspection;
  const auto add = [&](const std::string& name, std::size_t offset, std::size_t size) {
    inspection.regions.push_back(region(image, name, offset, size));
  };
  add("firmware", flash::kFirmwareOffset, flash::kFileLimit);
  add("user data", flash::kUserOffset, flash::kUserSize);
  std::size_t sector = flash::kUserOffset;
  for (std::size_t i = 0; i < flash::kUserPieces.size(); ++i) {
    sector += flash::kSectorSize;
    add("user data piece " + std::to_string(i + 1), sector, flash::kUserPieces[i]);
  }
  add("font", flash::kFontOffset, flash::kFileLimit);
  add("second firmware", flash::kSecondFirmwareOffset, flash::kFileLimit);
  // A piece of the user data may well hold nothing but 255.
  for (const FlashRegion& one : inspection.regions) {
    const bool needed = one.name == "firmware" || one.name == "font" || one.name == "user data";
    if (needed && one.used == 0) inspection.erased.push_back(one.name);
  }
  const std::string_view firmware = image.substr(flash::kFirmwareOffset, flash::kFileLimit);
  inspection.firmware_copies_agree =
      firmware == image.substr(flash::kSecondFirmwareOffset, flash::kFileLimit);
  inspection.user_copies_agree = whole_user_data(image) == pieces_joined(image);
  return inspection;
}

}  // namespace qv5123
