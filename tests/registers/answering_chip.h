#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/hex.h"
#include "support/fake_wire.h"

namespace qv5123::test {

/// A chip that answers the read requests of the register page from a map, and notes every request.
class AnsweringChip {
 public:
  explicit AnsweringChip(FakeWire& wire) : wire_(wire) {
    wire.sender.chip = [this](const std::string& bytes) { hear(bytes); };
  }

  std::map<int, int> values;  ///< by the 12 address bits that travel
  int latency = 10;           ///< ms
  bool silent = false;
  std::map<int, std::string> damaged;  ///< what the next answer of a register is instead
  std::size_t loses_every = 0;         ///< how many answers it takes until one is lost; 0: none is
  std::vector<int> requests;

 private:
  void hear(const std::string& bytes) {
    if (bytes.size() != 12 || !bytes.starts_with("@94")) return;
    const int address = std::stoi(bytes.substr(3, 2) + bytes.substr(9, 2), nullptr, 16);
    requests.push_back(address);
    if (silent || !values.count(address)) return;
    if (loses_every > 0 && requests.size() % loses_every == 0) return;
    const auto spoilt = damaged.extract(address);
    std::string reply =
        spoilt ? spoilt.mapped() : "~" + lower_hex(static_cast<unsigned>(values[address])) + "^";
    wire_.scheduler.call_after(std::chrono::milliseconds(latency),
                               [this, reply = std::move(reply)] { wire_.receive(reply); });
  }

  FakeWire& wire_;
};

/// Two categories: "Sensor" with the registers 0xF800 (two bit fields), 0xF801 and 0x0A5 (not saved), and
/// "Lens" with 0xFA20 and another 0xF801.
inline constexpr std::u16string_view kSampleDescription =
    uR"(<isp chip="QV5123">
<category catname="Sensor">
<reg regname="MODE" addr="0xF800" write="W" reset="0x00">
<bit bitname="HIGH" range="[7:4]" desc="upper#$half" sample="0..15">
<bit bitname="BIT0" range="[0]" desc="lowest" sample="0, 1">
</reg>
<reg regname="GAIN" addr="0xf801" write="W" reset="0x00">
</reg>
<reg regname="ID" addr="0x0A5" write="R" reset="0x00">
</reg>
</category>
<category catname="Lens">
<reg regname="K1" addr="0xFA20" write="W" reset="0x00">
<bit bitname="ALL" range="[7:0]" desc="" sample="">
</reg>
<reg regname="GAIN2" addr="0xF801" write="R" reset="0x00">
</reg>
</category>
)";

}  // namespace qv5123::test
