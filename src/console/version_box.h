#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "console/user_data_image.h"
#include "link/register_write.h"

namespace qv5123 {

/// The version box: three slots of three numbers, kept in the user data as tens and units digits.
inline constexpr int kVersionSlots = 3;
inline constexpr const char* kVersionSlotNames[kVersionSlots] = {"HW", "SW", "ISP"};
inline constexpr int kVersionNumberMax = 99;

using VersionNumbers = std::array<int, 3>;

/// The entry of the tens digit of number 0..2 of slot 0..2; the units digit follows.
constexpr std::size_t version_entry(int slot, std::size_t number) {
  return 689 + 2 * (static_cast<std::size_t>(slot) * VersionNumbers{}.size() + number);
}

/// The register that takes the digits of slot 0..2.
constexpr std::uint8_t version_register(int slot) {
  return static_cast<std::uint8_t>(0xCB + slot);
}

/// The numbers of slot 0..2; zeros for any other slot.
VersionNumbers load_version(const UserDataImage& image, int slot);

/// Stores the numbers, each held within 0..99; the entries of one that they hold already stay as they are,
/// also where they are no digits. A slot outside 0..2 stores nothing.
void store_version(UserDataImage& image, int slot, const VersionNumbers& numbers);

/// What "S" sends of the slot as it is stored: per number a flush of its tens digit and its units digit.
/// Nothing for a slot outside 0..2.
Traffic version_traffic(const UserDataImage& image, int slot);

}  // namespace qv5123
