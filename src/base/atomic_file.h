#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace qv5123 {

/// What came of reading or writing a file.
struct FileResult {
  std::string text;      ///< in words, with the file's name; empty on success
  bool refused = false;  ///< read_whole_file() found something that it would not read
  bool ok() const { return text.empty(); }
};

/// The path as UTF-8, for messages.
std::string path_text(const std::filesystem::path& path);

/// Replaces the content of `path` (or makes the file) in one step: the bytes go to a temporary file beside
/// it, reach the disk, and only then take the old file's place. Whatever fails, the old file stays whole and
/// no temporary stays behind; those that killed runs left beside it more than a day ago are removed. A
/// symbolic link keeps pointing to the file that is replaced, and one that leads to no file is refused; only
/// regular files that may be written are replaced, never directories or devices.
FileResult write_file_atomically(const std::filesystem::path& path, std::string_view bytes);

/// Reads all of a regular file into `bytes`, which is left empty on failure. A file larger than `limit` bytes
/// is refused, so that a wrong choice cannot fill the memory, and so is what is no regular file.
FileResult read_whole_file(const std::filesystem::path& path, std::string& bytes,
                           std::uintmax_t limit = std::uintmax_t{64} << 20);

namespace detail {

/// What came of making a new file.
struct NewFile {
  std::string why;          ///< the error in the system's words; empty on success
  bool is_there = false;    ///< it was made, whatever came of it then
  bool name_taken = false;  ///< not made, since there was something of its name
};
/// What each system does by itself: makes `temporary`, which must not exist yet, with `bytes` in it, on the
/// disk, and with the permissions of `like` if that exists; then renames it to `target`. The error is in the
/// system's words, empty on success.
NewFile write_new_file(const std::filesystem::path& temporary, std::string_view bytes,
                       const std::filesystem::path& like);
std::string rename_over(const std::filesystem::path& temporary, const std::filesystem::path& target);
/// Fills `bytes` from the beginning of a regular file. Waits for nobody, whatever may have come into the
/// place of the file since it was looked at. The error is in words, empty on success.
std::string fill_from_file(const std::filesystem::path& path, std::string& bytes);
/// Whether the file belongs to the user who runs the program.
bool is_own_file(const std::filesystem::path& path);
/// A number that no other running process shares.
unsigned long process_number();

}  // namespace detail
}  // namespace qv5123
