#pragma once

#include <string>
#include <string_view>

#include "support/program.h"

namespace qv5123::test {

/// Reads from `fd` until `text` holds `wanted`, the end, or half a minute has passed.
void read_until(int fd, std::string& text, std::string_view wanted);

}  // namespace qv5123::test
