#include "simulator/settings_registers.h"

#include <optional>

#include "simulator/settings_places.h"

namespace qv5123 {
namespace {

constexpr std::uint8_t kStepIndex = 0x41;
constexpr std::uint8_t kMatrixVideoMode = 0xCA;
constexpr std::uint8_t kDelay = 0x71;
constexpr std::uint8_t kFirstLightRecord = 0x4F;
constexpr std::uint8_t kFirstMatrixRow = 0x52;
constexpr std::uint8_t kSaturation = 0x5B;
constexpr std::size_t kSteps = 7;
constexpr std::size_t kStepRows = 6;
constexpr std::size_t kLightSources = 3;

/// Where a register's bytes live: `length` entries from `entry` on, taken over `unit` bytes at a time.
struct Place {
  std::size_t entry;
  std::size_t length;
  std::size_t unit;
};

/// `count` registers in a row from `address` on, each with `length` entries, following each other.
struct Group {
  std::uint8_t address;
  std::uint8_t count;
  std::size_t entry;
  std::size_t length;
  std::size_t unit;
};

constexpr Group kGroups[] = {
    {0x03, 3, 45, 44, 2},                          // gamma curves R, G, B: 22 points each
    {0x06, 1, 44, 1, 1},                           // gamma channel selection
    {0x0D, 10, 181, 2, 2},                         // white lines
    {0x2F, 3, 201, 4, 2},                          // AWB weights of the light sources
    {0x37, 3, 285, 1, 1},                          // gain thresholds
    {0x3A, 3, 288, 1, 1},                          // AE target, speed and further value
    {0x5F, 1, 291, 1, 1},                          // mirror and flip
    {0x60, 1, 439, 1, 1},                          // hue angle
    {0x64, 2, 440, 6, 2},                          // lens shading parameters 1 and 2
    {0x66, 1, 452, 2, 1},                          // lens shading, dark adaptive
    {0x67, 1, 583, 1, 1},                          // Smart IR
    {0x6E, 1, 454, 1, 1},                          // video mode
    {0x6F, 1, 456, 1, 1},                          // colour order
    {0x70, 1, 462, 1, 1},                          // day/night mode
    {kDelay, 1, 457, 1, 1}, {0x74, 1, 464, 1, 1},  // IR on/off
    {0x78, 4, 465, 2, 2},                          // black level clamps R, GR, GB, B
    {0x89, 1, 549, 1, 1},                          // WDR
    {0x8C, 1, 475, 4, 1},                          // defect pixel correction
    {0x8D, 1, 582, 1, 1},                          // LED dimmer
    {0xAA, 1, 551, 1, 1},                          // polarity
    {0xAB, 1, 552, 1, 1},                          // color suppress
    {0xAC, 7, 553, 1, 1},                          // thresholds, bright offset, NR weight
    {0xB3, 2, 560, 3, 1},                          // NR filter sizes
    {0xB5, 3, 566, 1, 1},                          // Y-bin enables, saturation suppress weight
    {0xB8, 1, 569, 3, 1},                          // APSA
    {0xB9, 1, 572, 2, 1},                          // contrast knee point
    {0xBA, 1, 574, 4, 1},                          // contrast gains
    {0xBB, 1, 578, 2, 1},                          // contrast weight
    {0xBC, 1, 580, 2, 1},                          // contrast knee threshold
    {0xC9, 1, 634, 1, 1},                          // OSD pattern
    {0xCB, 3, 689, 6, 1},                          // version digits HW, SW, ISP
};

/// The five banks of step tables: first row's register, first entry.
struct Bank {
  std::uint8_t address;
  std::size_t entry;
};
constexpr Bank kBanks[] = {{0x42, 292}, {0x48, 334}, {0xC3, 592}, {0xCE, 707}, {0xD4, 803}};

/// First entry of the colour matrices of each signal, in the order of register 0xCA.
constexpr std::size_t kMatrixEntries[] = {matrix_entry::kTvi, matrix_entry::kAhd, matrix_entry::kCvi,
                                          matrix_entry::kCvbs};

std::optional<Place> plain_place(std::uint8_t address) {
  for (const Group& group : kGroups) {
    if (address >= group.address && address < group.address + group.count) {
      return Place{group.entry + (address - group.address) * group.length, group.length, group.unit};
    }
  }
  return std::nullopt;
}

std::optional<Place> step_place(const ChipState& state, std::uint8_t address) {
  const std::size_t step = state.direct[kStepIndex];
  for (const Bank& bank : kBanks) {
    if (address < bank.address || address >= bank.address + kStepRows) continue;
    if (step >= kSteps) return std::nullopt;
    return Place{bank.entry + (address - bank.address) * kSteps + step, 1, 1};
  }
  return std::nullopt;
}

std::optional<Place> light_place(const ChipState& state, std::uint8_t address) {
  const std::size_t light = state.direct[kLightSourceChoice];
  if (light >= kLightSources) return std::nullopt;
  if (address == kSaturation) return Place{436 + light, 1, 1};
  if (address >= kFirstLightRecord && address < kFirstLightRecord + 3) return Place{377 + 2 * light, 1, 1};
  return std::nullopt;
}

std::optional<Place> matrix_place(const ChipState& state, std::uint8_t address) {
  const std::size_t mode = state.direct[kMatrixVideoMode];
  if (address < kFirstMatrixRow || address >= kFirstMatrixRow + 9 || mode >= 4) return std::nullopt;
  return Place{kMatrixEntries[mode] + 6u * (address - kFirstMatrixRow), 6, 2};
}

std::optional<Place> place_of(const ChipState& state, std::uint8_t address) {
  if (const auto place = plain_place(address)) return place;
  if (const auto place = step_place(state, address)) return place;
  if (const auto place = light_place(state, address)) return place;
  return matrix_place(state, address);
}

void set_entry(ChipState& state, std::size_t entry, std::uint8_t value) {
  state.user_data.set_entry(entry, value);
  if (keeping(state)) state.kept_data.set_entry(entry, value);
}

/// Entries that follow from a write beside the one it stands for.
void set_companions(ChipState& state, std::uint8_t address, std::uint8_t value) {
  if (address == kDelay) set_entry(state, 458, value);
  if (address >= kFirstLightRecord && address < kFirstMatrixRow &&
      state.direct[kLightSourceChoice] < kLightSources) {
    set_entry(state, 376 + 2 * state.direct[kLightSourceChoice], address - kFirstLightRecord);
  }
}

}  // namespace

void apply_setting(ChipState& state, const WriteRun& run) {
  const auto place = place_of(state, run.address());
  if (!place || !run.completes(place->unit)) return;
  const std::size_t first = (run.count() - place->unit) % place->length;
  for (std::size_t i = 0; i < place->unit; ++i) {
    set_entry(state, place->entry + first + i, run.value(place->unit - 1 - i));
  }
  set_companions(state, run.address(), run.value(0));
}

void load_setting_registers(ChipState& state) {
  for (int address = 0; address < 256; ++address) {
    const auto place = place_of(state, static_cast<std::uint8_t>(address));
    if (place) state.direct[address] = state.user_data.entry(place->entry);
  }
}

}  // namespace qv5123
