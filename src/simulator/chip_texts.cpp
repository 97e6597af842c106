#include "simulator/chip_texts.h"

#include <string_view>

#include "base/hex.h"
#include "link/register_write.h"
#include "simulator/settings_places.h"

namespace qv5123 {
namespace {

constexpr char kSerialNumber[] = "QV5120042";
constexpr std::size_t kVersionEntries = 689;
constexpr std::size_t kVersionDigits = 6;

constexpr std::string_view kVideoModes[] = {
    "2M PAL T_25fps", "2M NTSC T_30fps", "2M PAL A_25fps", "2M NTSC A_30fps",
    "2M PAL C_25fps", "2M NTSC C_30fps", "1M PAL T_25fps", "1M NTSC T_30fps",
    "1M PAL A_25fps", "1M NTSC A_30fps", "1M PAL C_25fps", "1M NTSC C_30fps",
    "CVBS PAL",       "CVBS NTSC",       "1M PAL T_50fps", "1M NTSC T_60fps"};
constexpr std::string_view kLightSources[] = {"Outdoor", "Light-1", "Light-2"};

template <std::size_t N>
std::string name_of(const std::string_view (&names)[N], std::size_t index) {
  return index < N ? std::string(names[index]) : "mode " + std::to_string(index);
}

std::string line(std::string_view label, const std::string& value) {
  return " " + std::string(label) + ": " + value + "\r\n";
}

std::string number(const ChipState& chip, std::size_t entry) {
  return std::to_string(chip.user_data.entry(entry));
}

/// Three two-digit numbers of version slot 0 (HW), 1 (SW) or 2 (ISP).
std::string version(const ChipState& chip, std::size_t slot) {
  const std::size_t first = kVersionEntries + kVersionDigits * slot;
  std::string text;
  for (std::size_t i = 0; i < kVersionDigits; i += 2) {
    if (i > 0) text += '.';
    text += std::to_string(chip.user_data.entry(first + i) * 10 + chip.user_data.entry(first + i + 1));
  }
  return text;
}

std::string running(const ChipState& chip, std::uint8_t task) {
  return chip.direct[task] != 0 ? "running" : "stopped";
}

int awb_weight(const ChipState& chip, std::size_t entry) {
  const int word = chip.user_data.word(entry);
  return word >= 0x8000 ? word - 0x10000 : word;
}

/// First entry of the AWB weights of the light source in force.
std::size_t awb_weights(const ChipState& chip) {
  return 201 + 4 * std::size_t{chip.direct[kLightSourceChoice] % 3u};
}

}  // namespace

std::string boot_banner(const ChipState& chip) {
  return "\r\nQV5123 camera ISP, serial number " + std::string(kSerialNumber) + "\r\n HW " +
         version(chip, 0) + ", SW " + version(chip, 1) + ", ISP " + version(chip, 2) + ", video " +
         name_of(kVideoModes, chip.user_data.entry(454)) + "\r\n";
}

std::string version_reply(const ChipState& chip) {
  std::string text;
  for (std::size_t i = 0; i < 3 * kVersionDigits; ++i) {
    text += lower_hex(chip.user_data.entry(kVersionEntries + i));
  }
  for (const char c : std::string_view(kSerialNumber)) text += lower_hex(static_cast<unsigned char>(c));
  return text;
}

std::string dump_text(const ChipState& chip, std::uint16_t start, std::uint16_t end) {
  const unsigned first = start & 0xFFFu;
  const unsigned last = end & 0xFFFu;
  if (last < first) {
    return "\r\ndump: 0xF" + upper_hex(last, 3) + " lies before 0xF" + upper_hex(first, 3) + "\r\n";
  }
  std::string text = "\r\n";
  for (unsigned address = first; address <= last; ++address) {
    text += "0xF" + upper_hex(address, 3) + " = 0x" + upper_hex(chip.isp[address]) + "\r\n";
  }
  return text;
}

std::string ae_info_text(const ChipState& chip) {
  return "\r\nAE\r\n" + line("task", running(chip, reg::kAeTask)) + line("target", number(chip, 288)) +
         line("luma", number(chip, 288)) + line("speed", number(chip, 289)) +
         line("sensor analog gain threshold", number(chip, 285)) +
         line("sensor digital gain threshold", number(chip, 286)) +
         line("ISP digital gain threshold", number(chip, 287));
}

std::string awb_info_text(const ChipState& chip) {
  return "\r\nAWB\r\n" + line("task", running(chip, reg::kAwbTask)) +
         line("light source", name_of(kLightSources, chip.direct[kLightSourceChoice])) +
         line("R weight", std::to_string(awb_weight(chip, awb_weights(chip)))) +
         line("B weight", std::to_string(awb_weight(chip, awb_weights(chip) + 2)));
}

std::string ae_info_reply(const ChipState& chip) {
  std::string text = lower_hex(chip.direct[reg::kAeTask] != 0 ? 1 : 0);
  for (const std::size_t entry : {288u, 288u, 289u, 285u, 286u, 287u}) {
    text += lower_hex(chip.user_data.entry(entry));
  }
  return text;
}

std::string awb_info_reply(const ChipState& chip) {
  const std::size_t weights = awb_weights(chip);
  return lower_hex(chip.direct[reg::kAwbTask] != 0 ? 1 : 0) + lower_hex(chip.direct[kLightSourceChoice]) +
         lower_hex(static_cast<unsigned>(chip.user_data.word(weights)), 4) +
         lower_hex(static_cast<unsigned>(chip.user_data.word(weights + 2)), 4);
}

}  // namespace qv5123
