#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace qv5123 {

/// The content of the camera's serial flash, by the bytes where each part begins:
///
///     00000 firmware      11000 12000 13000 14000 15000 user data again, in five pieces
///     10000 user data     20000 font      30000 firmware again
///
/// No header, checksum or length field; whatever no part of it covers is 0xFF, as in an erased flash.
namespace flash {
inline constexpr std::size_t kImageSize = 0x40000;
inline constexpr std::uint8_t kErased = 0xFF;

/// Firmware and font each have 64 KiB; the firmware stands twice.
inline constexpr std::size_t kFirmwareOffset = 0x00000;
inline constexpr std::size_t kUserOffset = 0x10000;
inline constexpr std::size_t kFontOffset = 0x20000;
inline constexpr std::size_t kSecondFirmwareOffset = 0x30000;
inline constexpr std::size_t kFileLimit = 0x10000;
static_assert(kSecondFirmwareOffset + kFileLimit == kImageSize);

/// The user data stands twice as well: once whole, and once in pieces of these sizes, each at the start of a
/// sector of its own.
inline constexpr std::size_t kUserSize = 2048;
inline constexpr std::size_t kSectorSize = 0x1000;
inline constexpr std::array<std::size_t, 5> kUserPieces = {177, 285, 454, 899, 233};
}  // namespace flash

/// What goes into a flash image; what is absent stays erased.
struct FlashContent {
  /// At most flash::kFileLimit bytes; more would be cut off.
  std::optional<std::string> firmware;
  std::optional<std::string> font;
  /// Text of decimal numbers. The first 2048 count, each by its low 8 bits; where there are fewer the last
  /// one is repeated.
  std::optional<std::string> user_text;
};

/// The flash::kImageSize bytes of the image.
std::string lay_out_flash(const FlashContent& content);

/// The files that go into a flash image.
struct FlashFiles {
  std::filesystem::path firmware;
  std::filesystem::path font;
  std::filesystem::path user;
};

/// An image, or the reason why there is none.
struct FlashBuild {
  std::string image;
  std::string refusal;
  /// What the image does not have as it should: files that could not be read, with what stays erased for
  /// them, and a user file that is no whole setting file. A line each.
  std::vector<std::string> remarks = {};
  bool ok() const { return refusal.empty(); }
};

/// Builds the image from files. A file that cannot be read leaves its region erased, and a remark says so. A
/// firmware or font file larger than flash::kFileLimit is refused with its size and the limit, before any
/// file is read.
FlashBuild build_flash_image(const FlashFiles& files);

}  // namespace qv5123
