#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/lock_file.h"
#include "cli/output.h"
#include "console/user_data_image.h"
#include "registers/reg_description.h"

namespace qv5123 {

// Files of the command line. What cannot be read or written is a Complaint that names it.

std::string read_file(const std::filesystem::path& path, std::uintmax_t limit = std::uintmax_t{64} << 20);
/// The old file stays whole if it cannot be replaced.
void write_file(const std::filesystem::path& path, std::string_view bytes);
/// For who reads a file, changes it and writes it: what another command changes meanwhile must not be lost.
/// Of a file that another program keeps locked for seconds it is said.
FileLock lock_for_change(const std::filesystem::path& path);
/// Whether a setting file's text has any number. Reading makes an image of zeros of one that has none.
bool holds_settings(std::string_view text);
/// For looking at. A file without any number is none; what else is odd about one is told on stderr.
UserDataImage read_settings(Output& out, const std::filesystem::path& path);
/// For what goes on to the chip or into a file: refuses what is not 1024 decimal numbers 0..255. Lenient, it
/// takes what the window would.
UserDataImage read_whole_settings(const std::filesystem::path& path, bool lenient);
/// Refuses what is not `count` decimal numbers 0..255, unless lenient.
void check_settings_text(const std::filesystem::path& path, std::string_view text, std::size_t count,
                         bool lenient);
/// The description of the registers, "regu.xml" where no other is given. What is left out of it is told.
RegDescription load_description(Output& out, const std::filesystem::path& given);

}  // namespace qv5123
