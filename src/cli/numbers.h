#pragma once

#include <string>
#include <string_view>

#include "base/text.h"

namespace qv5123 {

/// The number of an argument, which `name` stands for in the complaint about a text that is none or lies
/// beyond `lowest`..`highest`.
int number_in(const std::string& name, std::string_view text, int lowest, int highest);
/// The same of a decimal number.
double real_number(const std::string& name, std::string_view text);

}  // namespace qv5123
