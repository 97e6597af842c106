#pragma once

#include <filesystem>
#include <vector>

namespace qv5123 {

/// The files used last, each once, the latest first.
class RecentFiles {
 public:
  static constexpr std::size_t kLimit = 4;

  RecentFiles() = default;
  /// The first kLimit of `files`; empty ones do not count.
  explicit RecentFiles(const std::vector<std::filesystem::path>& files);

  const std::vector<std::filesystem::path>& files() const { return files_; }
  /// Puts a file first, by its absolute path. False when it stood there already.
  bool use(const std::filesystem::path& file);

 private:
  std::vector<std::filesystem::path> files_;
};

}  // namespace qv5123
