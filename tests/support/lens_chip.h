#pragma once

#include <functional>
#include <string>

#include "base/hex.h"
#include "support/fake_wire.h"

namespace qv5123::test {

/// Plays a chip with a flat field that falls off from the middle of the line; `dark_at` reads 0 in green.
inline void answer_lens_reads(FakeWire& wire, int dark_at = -1) {
  wire.sender.chip = [&wire, dark_at, x = 0](const std::string& bytes) mutable {
    if (bytes.starts_with("@920c*@9238*")) x = std::stoi(bytes.substr(15, 2), nullptr, 16) << 8;
    if (bytes.starts_with("@920c*@9239*")) x |= std::stoi(bytes.substr(15, 2), nullptr, 16);
    if (!bytes.starts_with("@94")) return;
    const double d = (x - 960) / 2048.0;
    int level = 0x10;
    if (bytes == "@940c*@943d*") level = static_cast<int>(240 / (1 + 0.5 * d * d));
    if (bytes == "@940c*@943e*") level = x == dark_at ? 0 : static_cast<int>(200 / (1 + 0.5 * d * d));
    if (bytes == "@940c*@943f*") level = static_cast<int>(160 / (1 + 0.5 * d * d));
    wire.receive("~" + lower_hex(static_cast<unsigned>(level)) + "^");
  };
}

}  // namespace qv5123::test
