#include "cli/csv.h"

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "cli/complaint.h"
#include "cli/numbers.h"

namespace qv5123 {
namespace {

/// Takes the text up to `separator`, or all of it.
std::string_view take(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view piece = trimmed(text.substr(0, end));
  text.remove_prefix(std::min(end + 1, text.size()));
  return piece;
}

bool is_heading(std::string_view line) {
  return !parse_number(take(line, ','));
}

std::vector<int> parse_line(const std::string& where, std::string_view line, std::size_t columns) {
  std::vector<int> values;
  const std::size_t count = static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) + 1;
  if (count != columns) {
    refuse(where + ": " + std::to_string(columns) + " numbers expected, not " + std::to_string(count));
  }
  for (std::size_t i = 0; i < columns; ++i) {
    values.push_back(
        number_in(where, take(line, ','), std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
  }
  return values;
}

}  // namespace

std::vector<CsvLine> parse_csv(const std::string& file, std::string_view text, std::size_t columns) {
  std::vector<CsvLine> lines;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = take(text, '\n');
    if (line.empty() || (number == 1 && is_heading(line))) continue;
    lines.push_back({number, parse_line(file + ", line " + std::to_string(number), line, columns)});
  }
  return lines;
}

}  // namespace qv5123
