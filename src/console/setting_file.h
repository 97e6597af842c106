#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/atomic_file.h"
#include "base/background.h"
#include "console/user_data_image.h"

namespace qv5123 {

/// The setting file: text, line i holds entry i of the user data image as a decimal number and CR LF. One
/// whose first entries are 0, 18 and 255 begins
///
///     30 0D 0A  31 38 0D 0A  32 35 35 0D 0A        "0" "18" "255"
///
/// Read, it is 1024 numbers in white space, of which the low 8 bits count. Where a number is missing or is
/// none, the one before it (0 before the first) stands for it and for all that follow.

/// How choosers name it.
inline constexpr const char* kSettingFileFilter = "Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||";
inline constexpr const char* kSettingFileExtension = "dat";

/// The reload of the ISP tune page reads this file of the current directory, never the remembered one.
inline constexpr const char* kUserDataFile = "QV512xUser.dat";

/// 1024 lines of at most 13 characters fit many times; a larger file was chosen by mistake.
inline constexpr std::uintmax_t kSettingFileLimit = 1u << 20;

/// The image as the content of a setting file.
std::string setting_text(const UserDataImage& image);

/// The image that the content of a setting file stands for, marked as loaded.
UserDataImage image_of(std::string_view text);

/// A setting file as it was read.
struct ReadSettings {
  FileResult result;
  UserDataImage image;              ///< loaded() if the file could be read
  std::optional<std::string> text;  ///< of the file; nothing if it could not be read
  /// What is odd about it, format_summary() behind its name; empty for a whole setting file.
  std::string oddity;
};

ReadSettings read_setting_file(const std::filesystem::path& path);
/// The same for a file that may be slow to read.
Task<ReadSettings> read_setting_file(Background& background, std::filesystem::path path);

/// ReloadUserDataFile: reads kUserDataFile of `folder` into the image, which must outlive the task. A file
/// that does not exist is no failure and changes nothing.
Task<ReadSettings> reload_user_data_file(Background& background, UserDataImage& image,
                                         std::filesystem::path folder = ".");

}  // namespace qv5123
