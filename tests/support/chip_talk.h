#pragma once

#include <string>
#include <string_view>

#include "simulator/simulated_chip.h"

namespace qv5123::test {

/// What the chip says to these bytes.
inline std::string ask(SimulatedChip& chip, std::string_view bytes) {
  chip.receive({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  const auto output = chip.take_output();
  return {output.begin(), output.end()};
}

/// A chip whose announcement has been heard out.
struct ListeningChip : SimulatedChip {
  ListeningChip() {
    power_on();
    take_output();
  }
};

}  // namespace qv5123::test
