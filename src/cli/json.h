#pragma once

#include <nlohmann/json.hpp>

namespace qv5123 {

/// Keeps the order in which members were put in.
using Json = nlohmann::ordered_json;

}  // namespace qv5123
