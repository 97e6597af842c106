#include "state/chip_touch.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "link/indirect_access.h"
#include "tuning/awb.h"
#include "tuning/dynamic.h"
#include "tuning/matrix.h"
#include "tuning/picker.h"

namespace qv5123 {
namespace {

using Addresses = std::bitset<256>;

/// Requests, choices of what follows, brackets, and what concerns no value of any page: texts for the
/// console, versions, the pattern of the menu, the cursor's marks and the flicker mode.
const Addresses& harmless() {
  static const Addresses kHarmless = [] {
    constexpr std::array kSingle{0x07, 0x36, 0x69, 0x6A, 0x6B, 0xBE, 0xA2, 0xA5, 0xBF,
                                 0xC9, 0xBD, 0x32, 0x33, 0x34, 0xCB, 0xCC, 0xCD};
    Addresses all;
    for (const int address : kSingle) all.set(static_cast<std::size_t>(address));
    for (const std::uint8_t address : {reg::kKeepBracket, reg::kSaveBracket, kStepSelectRegister,
                                       kLightSourceRegister, kMatrixModeRegister, reg::kIspReadAddress,
                                       reg::kIspWideReadAddress, reg::kSensorReadAddress, reg::kDump})
      all.set(address);
    return all;
  }();
  return kHarmless;
}

bool belongs_to_picker(int isp_address) {
  using namespace picker_register;
  constexpr std::array kAll{kCorrection, kDisplay, kEnable, kX, kX + 1, kY, kY + 1};
  return std::find(kAll.begin(), kAll.end(), isp_address) != kAll.end();
}

/// The ISP address that the writes before `at` have put into the window; the batches of isp_write() have
/// nothing in between.
int isp_address(const Batch& batch, std::size_t at) {
  if (at < 2) return -1;
  const bool is_pair =
      batch[at - 2].address == reg::kIspWriteAddress && batch[at - 1].address == reg::kIspWriteAddress;
  return is_pair ? batch[at - 2].value * 256 + batch[at - 1].value : -1;
}

bool leaves_values_alone(const Batch& batch, std::size_t at) {
  const std::uint8_t address = batch[at].address;
  if (address == reg::kIspWriteAddress) return true;
  if (address == reg::kIspWriteData) return belongs_to_picker(isp_address(batch, at));
  return harmless().test(address);
}

}  // namespace

void ChipTouch::add(const Batch& batch, const Addresses& value_registers) {
  for (std::size_t at = 0; at < batch.size(); ++at) {
    if (leaves_values_alone(batch, at)) continue;
    const std::uint8_t address = batch[at].address;
    everything = everything || !value_registers.test(address);
    registers.set(address);
  }
}

}  // namespace qv5123
