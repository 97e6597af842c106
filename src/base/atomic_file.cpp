#include "base/atomic_file.h"

#include <atomic>
#include <chrono>
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

constexpr const char* kMark = ".qv5123-";
constexpr const char* kEnding = ".tmp";
/// How many names are tried where others hold the first ones.
constexpr int kNames = 100;
/// Whatever is older was left by a run that was killed: no write takes that long.
constexpr std::chrono::hours kLeftOver{24};

// Beside the target, since only a rename inside one file system is a single step. The mark tells what is
// ours.
fs::path temporary_beside(const fs::path& target) {
  static std::atomic<unsigned> serial{0};
  fs::path temporary = target;
  temporary += kMark + std::to_string(detail::process_number()) + "-" + std::to_string(++serial) + kEnding;
  return temporary;
}

bool is_temporary_of(const fs::path& target, const fs::path& path) {
  const std::string name = path_text(path.filename());
  const std::string start = path_text(target.filename()) + kMark;
  if (!name.starts_with(start) || !name.ends_with(kEnding)) return false;
  return name.find_first_not_of("0123456789-", start.size()) == name.size() - std::string(kEnding).size();
}

bool is_left_over(const fs::directory_entry& entry) {
  std::error_code error;
  const bool regular = fs::is_regular_file(entry.symlink_status(error));
  const fs::file_time_type written = entry.last_write_time(error);
  return regular && !error && fs::file_time_type::clock::now() - written > kLeftOver &&
         detail::is_own_file(entry.path());
}

/// Removes the temporaries that killed runs left beside `target`.
void remove_left_overs(const fs::path& target) {
  std::error_code error;
  std::error_code ignored;
  const fs::path folder = target.has_parent_path() ? target.parent_path() : ".";
  for (fs::directory_iterator at(folder, error); !error && at != fs::directory_iterator();
       at.increment(error)) {
    if (is_temporary_of(target, at->path()) && is_left_over(*at)) fs::remove(at->path(), ignored);
  }
}

/// Why nothing may be written in the place of `path`; empty if it may.
std::string refusal_to_replace(const fs::path& path, const fs::file_status& status) {
  std::error_code error;
  if (fs::is_directory(status)) return "it is a directory";
  if (fs::exists(status) && !fs::is_regular_file(status)) return "it is not a regular file";
  // A file in the link's own place would part it from what it was made for.
  if (!fs::exists(status) && fs::is_symlink(fs::symlink_status(path, error)))
    return "it is a link to no file";
  return {};
}

/// Makes a temporary with `bytes` and puts it in the place of `target`. Nothing that others made is touched.
std::string replace(const fs::path& target, std::string_view bytes) {
  fs::path temporary;
  detail::NewFile made;
  for (int name = 0; name == 0 || (made.name_taken && name < kNames); ++name) {
    temporary = temporary_beside(target);
    made = detail::write_new_file(temporary, bytes, target);
  }
  std::string why = made.why;
  if (why.empty()) why = detail::rename_over(temporary, target);
  std::error_code error;
  if (!why.empty() && made.is_there) fs::remove(temporary, error);
  return why;
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
  std::string why = refusal_to_replace(path, status);
  if (!why.empty()) return failure("Cannot write", path, why);
  // A link is followed, or the rename would put a file in the link's own place.
  const fs::path target = fs::exists(status) ? fs::canonical(path, error) : path;
  if (error && fs::exists(status)) return failure("Cannot write", path, error.message());
  why = replace(target, bytes);
  if (!why.empty()) return failure("Cannot write", path, why);
  remove_left_overs(target);
  return {};
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
