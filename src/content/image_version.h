#pragma once

#include <string>
#include <string_view>

namespace qv5123 {

/// What a firmware or font says of its own version: the first text in it with a number behind a "v", "ver" or
/// "version", as in "ISP firmware V2.3_2 Nov 2026", cut to 48 characters. Empty where there is none: the
/// format has no place for a version.
std::string version_in_image(std::string_view bytes);

}  // namespace qv5123
