#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// Walks over the lines of a description and picks attributes out of them. It works in place: line ends and
/// the closing quotes of values become 0, so that the text falls apart into zero-terminated strings.
class RegScanner {
 public:
  explicit RegScanner(std::u16string text);

  /// Goes to the next line that is not empty, or to the end of the text.
  void next_line();
  bool line_starts_with(std::u16string_view tag) const;
  /// The value of an attribute at or behind the cursor, which moves behind it; nothing, and the cursor stays,
  /// when the rest of the line does not hold `name`.
  std::optional<std::u16string_view> attribute(std::u16string_view name);
  /// Number of the line that the walk has come to, from 1, as an editor counts.
  std::size_t line_number() const;

 private:
  std::size_t end_of_string(std::size_t from) const;

  std::u16string text_;
  std::size_t cursor_ = 0;
  std::size_t line_start_ = 0;
  std::vector<std::size_t> line_ends_;  // positions of what ended each line
};

}  // namespace qv5123
