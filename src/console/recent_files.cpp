#include "console/recent_files.h"

#include <algorithm>
#include <system_error>

namespace qv5123 {

RecentFiles::RecentFiles(const std::vector<std::filesystem::path>& files) {
  for (auto file = files.rbegin(); file != files.rend(); ++file) {
    if (!file->empty()) use(*file);
  }
}

bool RecentFiles::use(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(file, error).lexically_normal();
  if (error) absolute = file;
  if (!files_.empty() && files_.front() == absolute) return false;
  std::erase(files_, absolute);
  files_.insert(files_.begin(), std::move(absolute));
  files_.resize(std::min(files_.size(), kLimit));
  return true;
}

}  // namespace qv5123
