#pragma once

#include <optional>
#include <vector>

#include "base/ui/findable.h"
#include "registers/reg_description.h"

namespace qv5123 {

/// The registers of a description, then its bit fields, as they can be looked for; numbered in that order.
std::vector<FoundPlace> register_places(const RegDescription& description);
/// The register that such a number stands for, or whose field it is; nothing beyond the last of them.
std::optional<std::size_t> register_of_place(const RegDescription& description, int id);

}  // namespace qv5123
