#include "cli/name_patterns.h"

#include <cstddef>

#include "tuning/settings_table.h"

namespace qv5123 {
namespace {

/// On a mismatch the last "*" takes one character more.
bool matches_wildcards(std::string_view pattern, std::string_view name) {
  std::size_t p = 0;
  std::size_t n = 0;
  std::size_t star = std::string_view::npos;
  std::size_t taken = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      taken = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
      ++p;
      ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++taken;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

bool has_wildcard(std::string_view pattern) {
  return pattern.find_first_of("*?") != std::string_view::npos;
}

bool stands_for(std::string_view pattern, std::string_view name) {
  if (has_wildcard(pattern)) return matches_wildcards(pattern, name);
  return pattern == name || is_in_group(name, pattern);
}

}  // namespace qv5123
