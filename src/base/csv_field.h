#pragma once

#include <string>

namespace qv5123 {

/// A text as a field of a CSV file: between quotation marks where it has a comma, a quotation mark or a line
/// end.
std::string csv_field(const std::string& text);

}  // namespace qv5123
