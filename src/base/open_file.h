#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace qv5123 {

/// A file that is read and written anywhere in it, as each system does it. Waits for nobody. What fails says
/// so in error().
class OpenFile {
 public:
  /// Makes the file where it is missing.
  explicit OpenFile(const std::filesystem::path& path);
  ~OpenFile();
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  bool is_open() const;
  /// In bytes; -1 for what is no regular file.
  std::int64_t size();
  /// All of the bytes at `at`, or none.
  bool read(std::int64_t at, char* bytes, std::size_t count);
  bool write(std::int64_t at, std::string_view bytes);
  /// Makes the file that long; what lay behind goes.
  bool cut(std::int64_t size);
  /// What was written is on the disk, the file's name included.
  bool sync();
  /// Why the last of these failed, in the system's words.
  const std::string& error() const { return error_; }

 private:
  bool failed();

  const std::filesystem::path path_;
  bool is_new_ = false;
  std::intptr_t handle_;
  std::string error_;
};

}  // namespace qv5123
