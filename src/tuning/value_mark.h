#pragma once

#include <optional>
#include <string>

namespace qv5123 {

/// How a value in a page differs from the other places where it can be.
struct ValueMark {
  bool unsent = false;  ///< typed or computed, and not on the chip as far as anybody knows
  bool differs_from_chip = false;
  bool differs_from_file = false;
  std::optional<int> chip;  ///< the chip's number as the page would show it; nothing while it is not known
  std::string others;       ///< the other values, "chip 12, file 20"; empty where nothing differs

  bool any() const { return unsent || differs_from_chip || differs_from_file; }
  friend bool operator==(const ValueMark&, const ValueMark&) = default;
};

}  // namespace qv5123
