#pragma once

#include <string>

namespace qv5123 {

/// Thrown within a unit's step: why it ends there, in words.
struct StepFailed {
  std::string why;
};

}  // namespace qv5123
