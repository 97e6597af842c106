#pragma once

#include <string_view>

namespace qv5123 {

/// Whether `pattern` stands for `name`: the name itself, the beginning of it before a point or a bracket
/// ("awb", "gamma.r"), or a text in which "*" is any characters and "?" any one ("*.clamp.g?").
bool stands_for(std::string_view pattern, std::string_view name);

/// Whether it can stand for more than one name.
bool has_wildcard(std::string_view pattern);

}  // namespace qv5123
