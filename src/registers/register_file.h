#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/atomic_file.h"
#include "base/background.h"
#include "registers/reg_description.h"

namespace qv5123 {

class PageHost;

/// A register text file: one line for each register,
///
///     0xF800=0x1A //NAME
///
/// four upper-case hex digits of the address, two of the value, CR LF. The name is a comment.
struct RegisterFile {
  /// Bytes of a file at most: several lines for each of 65536 addresses. Larger ones are refused.
  static constexpr std::uintmax_t kLargest = std::uintmax_t{4} << 20;

  struct Line {
    int address = 0;  ///< 0..0xFFFF
    int value = 0;    ///< 0..0xFF
    friend bool operator==(const Line&, const Line&) = default;
  };
  std::vector<Line> lines;
  std::size_t skipped = 0;        ///< lines that are not of this form; blank ones do not count
  std::size_t first_skipped = 0;  ///< number of the first of them, from 1; 0 if there is none

  /// Reads a file's text. A line may have fewer digits and anything behind "//"; others are skipped.
  static RegisterFile parse(std::string_view text);
};

/// The file's text for the registers that are marked as saved and were read at least once. Names keep the low
/// byte of each of their first 256 characters.
std::string register_file_text(const RegDescription& description);

/// What of the registers that are marked as saved goes into a file.
struct SavedRegisters {
  std::size_t saved = 0;
  std::size_t unread = 0;   ///< left out
  std::size_t written = 0;  ///< of those saved: written by hand since, the file has the value that was read
};
SavedRegisters saved_registers(const RegDescription& description);

/// Writes the registers as they are now.
Task<FileResult> save_register_file(PageHost& host, std::filesystem::path path,
                                    const RegDescription& description);

/// A file as read; without lines when the result says why it cannot be.
struct LoadedRegisterFile {
  FileResult result;
  RegisterFile file;
};
Task<LoadedRegisterFile> load_register_file(Background& background, std::filesystem::path path);

/// The registers whose value is known, in the description's order.
std::vector<RegisterFile::Line> known_registers(const RegDescription& description);

/// Forgets all values, then gives every register the last value that the file has for its address. Returns
/// how often a line met a register.
std::size_t apply_register_file(const RegisterFile& file, RegDescription& description);

}  // namespace qv5123
