#include "simulator/page_replies.h"

#include "base/hex.h"
#include "simulator/settings_places.h"

namespace qv5123 {
namespace {

/// Day/night mode in which the picture is black and white and the IR-LED lights it.
constexpr std::uint8_t kBlackAndWhite = 2;

std::string entry(const ChipState& chip, std::size_t index) {
  return lower_hex(chip.user_data.entry(index));
}

/// The entries first..last.
std::string entries(const ChipState& chip, std::size_t first, std::size_t last) {
  std::string text;
  for (std::size_t i = first; i <= last; ++i) text += entry(chip, i);
  return text;
}

/// One byte whose bits say which of the given direct registers are switched on.
struct Flag {
  std::uint8_t address;
  unsigned bit;
};
std::string flags(const ChipState& chip, std::initializer_list<Flag> list) {
  unsigned byte = 0;
  for (const Flag& flag : list) byte |= (chip.direct[flag.address] != 0 ? 1u : 0u) << flag.bit;
  return lower_hex(byte);
}

std::string gamma_reply(const ChipState& chip) {
  return entries(chip, 0, 43) + entries(chip, 45, 176);
}

std::string awb_reply(const ChipState& chip) {
  return entries(chip, 181, 200);
}

std::string lens_reply(const ChipState& chip) {
  return entries(chip, 440, 451);
}

std::string matrix_reply(const ChipState& chip) {
  using namespace matrix_entry;
  std::string text;
  for (const std::size_t mode : {kTvi, kCvbs, kAhd, kCvi}) {
    for (std::size_t byte = 0; byte < 18; ++byte) {  // byte within the three rows
      for (std::size_t light = 0; light < 3; ++light) text += entry(chip, mode + 18 * light + byte);
    }
  }
  return text;
}

std::string dynamic_reply(const ChipState& chip) {
  std::string text = entry(chip, 291) + entries(chip, 285, 290);
  for (std::size_t cell = 0; cell < 42; ++cell) {
    for (const std::size_t bank : {292u, 334u, 592u, 707u, 803u}) text += entry(chip, bank + cell);
  }
  text += entries(chip, 376, 381) + entries(chip, 436, 438) + entry(chip, 478) + entry(chip, 439);
  text += entries(chip, 201, 212) + entry(chip, 583);
  text += lower_hex(chip.user_data.entry(462) == kBlackAndWhite ? 1 : 0);
  return text + entry(chip, 454);
}

std::string front_reply(const ChipState& chip) {
  std::string text = entry(chip, 454) + entry(chip, 456) + entry(chip, 462) + entry(chip, 551);
  text += entries(chip, 465, 472);
  text += flags(chip, {{0x84, 3}}) + flags(chip, {{0x85, 1}});
  text += flags(chip, {{0x86, 4}, {0x87, 1}, {0x88, 0}}) + flags(chip, {{0x8B, 5}});
  text += flags(chip, {{0x82, 6}, {0x83, 3}});
  return text + entry(chip, 552) + entry(chip, 582) + entry(chip, 549);
}

}  // namespace

ReplyTable page_replies() {
  return {{0x07, gamma_reply},  {0x36, awb_reply},  {0x69, dynamic_reply},
          {0x6A, matrix_reply}, {0x6B, lens_reply}, {0xBE, front_reply}};
}

}  // namespace qv5123
