#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qv5123 {

/// A line of numbers and where it stood.
struct CsvLine {
  std::size_t number = 0;  ///< from 1
  std::vector<int> values;
};

/// The lines of a text of numbers between commas, `columns` in each. Blanks around numbers, empty lines, and
/// a first line that holds a letter are allowed. Anything else is a Complaint that names `file` and the line.
std::vector<CsvLine> parse_csv(const std::string& file, std::string_view text, std::size_t columns);

}  // namespace qv5123
