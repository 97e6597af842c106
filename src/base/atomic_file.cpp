#include "base/atomic_file.h"

#include <atomic>
#include <exception>
#include <system_error>

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

FileResult failure(const char* what, const fs::path& path, const std::string& why) {
  return {std::string(what) + " " + path_text(path) + ": " + why};
}

FileResult refusal(const fs::path& path, const std::string& why) {
  FileResult result = failure("Cannot read", path, why);
  result.refused = true;
  return result;
}

// Beside the target, since only a rename inside one file system is a single step.
fs::path temporary_beside(const fs::path& target) {
  static std::atomic<unsigned> serial{0};
  fs::path temporary = target;
  temporary += "." + std::to_string(detail::process_number()) + "-" + std::to_string(++serial) + ".tmp";
  return temporary;
}

}  // namespace

std::string path_text(const fs::path& path) {
  try {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
  } catch (const std::exception&) {
    return "(a name that is no Unicode text)";  // Windows allows such names
  }
}

FileResult write_file_atomically(const fs::path& path, std::string_view bytes) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) return failure("Cannot write", path, "it is a directory");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    return failure("Cannot write", path, "it is not a regular file");
  }
  // A link is followed, or the rename would put a file in the link's own place.
  const fs::path target = fs::exists(status) ? fs::canonical(path, error) : path;
  if (error && fs::exists(status)) return failure("Cannot write", path, error.message());

  const fs::path temporary = temporary_beside(target);
  std::string why = detail::write_new_file(temporary, bytes, target);
  if (why.empty()) why = detail::rename_over(temporary, target);
  if (why.empty()) return {};
  fs::remove(temporary, error);
  return failure("Cannot write", path, why);
}

FileResult read_whole_file(const fs::path& path, std::string& bytes, std::uintmax_t limit) {
  bytes.clear();
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return failure("Cannot read", path, error ? error.message() : "no such file");
  if (!fs::is_regular_file(status)) return refusal(path, "it is not a regular file");
  const std::uintmax_t size = fs::file_size(path, error);
  if (error) return failure("Cannot read", path, error.message());
  if (size > limit) return refusal(path, "larger than " + std::to_string(limit) + " bytes");
  bytes.resize(static_cast<std::size_t>(size));
  const std::string why = detail::fill_from_file(path, bytes);
  if (why.empty()) return {};
  bytes.clear();
  return failure("Cannot read", path, why);
}

}  // namespace qv5123
