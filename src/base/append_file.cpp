#include "base/append_file.h"

#include <algorithm>
#include <optional>

#include "base/atomic_file.h"
#include "base/open_file.h"

namespace qv5123 {
namespace {

/// No line is longer.
constexpr std::int64_t kLongestLine = 1 << 20;
constexpr std::int64_t kPiece = 4096;

/// What stands behind the last line end, as far as a line may be long. Nothing on an error.
std::optional<std::string> tail_of(OpenFile& file, std::int64_t size) {
  std::string tail;
  for (std::int64_t at = size; at > 0 && size - at <= kLongestLine;) {
    const std::int64_t start = std::max<std::int64_t>(0, at - kPiece);
    std::string piece(static_cast<std::size_t>(at - start), '\0');
    if (!file.read(start, piece.data(), piece.size())) return std::nullopt;
    const std::size_t end = piece.rfind('\n');
    tail.insert(0, piece, end == std::string::npos ? 0 : end + 1);
    if (end != std::string::npos) break;
    at = start;
  }
  return tail;
}

/// Why nothing was written; empty on success.
std::string append(OpenFile& file, std::string_view lines, const TailJudge& judge) {
  const std::int64_t size = file.is_open() ? file.size() : -1;
  if (size < 0) return file.error();
  const std::optional<std::string> tail = tail_of(file, size);
  if (!tail) return file.error();
  const Tail kind = tail->empty() ? Tail::cut : judge(*tail);
  if (kind == Tail::foreign) return "it ends with something else than what is written there";
  const bool whole = kind == Tail::whole;
  const std::int64_t end = whole ? size : size - static_cast<std::int64_t>(tail->size());
  const std::string text = (whole ? "\n" : "") + std::string(lines);
  if (end < size && !file.cut(end)) return file.error();
  if (file.write(end, text) && file.sync()) return {};
  const std::string why = file.error();
  if (file.cut(end)) file.sync();
  return why;
}

}  // namespace

std::string append_lines(const std::filesystem::path& path, std::string_view lines, const TailJudge& judge) {
  OpenFile file(path);
  const std::string why = append(file, lines, judge);
  return why.empty() ? "" : "Cannot write " + path_text(path) + ": " + why;
}

}  // namespace qv5123
