#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "console/user_data_image.h"
#include "link/register_write.h"

namespace qv5123 {

/// What the picture shows for the white balance page.
enum class AwbMark {
  none,
  set,    ///< the cursor, which the OSD keys move
  check,  ///< the cursor, and what the chip takes for white
};

/// Everything the simulated chip remembers. Plain data, so that replies can be built from it and tests can
/// look at it.
struct ChipState {
  static constexpr std::size_t kIspSize = 0x1000;
  static constexpr std::size_t kSensorSize = 0x10000;
  static constexpr std::size_t kFlashWindow = 0x800;  ///< ISP addresses 0x800..0xFFF can be kept in flash

  /// The 256 registers that frames write directly: the byte written last.
  std::array<std::uint8_t, 256> direct{};
  /// The 12-bit ISP space, one byte per address.
  std::array<std::uint8_t, kIspSize> isp{};
  /// The 16-bit sensor space, one word per address.
  std::vector<std::uint16_t> sensor = std::vector<std::uint16_t>(kSensorSize);

  UserDataImage user_data;     ///< the settings in force; page replies are built from these
  UserDataImage kept_data;     ///< what survives a power cycle
  UserDataImage factory_data;  ///< what a factory reset brings back

  std::vector<std::uint8_t> firmware;  ///< last good image, whole blocks
  std::vector<std::uint8_t> font;      ///< last good image, whole blocks

  /// ISP registers stored in flash, and one bit per address that says which of them are valid.
  std::array<std::uint8_t, kFlashWindow> flash_registers{};
  std::array<std::uint8_t, kFlashWindow / 8> flash_mask{};

  AwbMark awb_mark = AwbMark::none;
  std::size_t frames = 0;  ///< frames understood since power on
};

/// True while the chip keeps what it is told (between register 0xFA = 1 and 0xFA = 0).
inline bool keeping(const ChipState& state) {
  return state.direct[reg::kKeepBracket] != 0;
}

}  // namespace qv5123
