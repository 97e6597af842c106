#include "console/version_box.h"

#include <algorithm>

namespace qv5123 {
namespace {

bool has_slot(int slot) {
  return slot >= 0 && slot < kVersionSlots;
}

int in_range(int number) {
  return std::clamp(number, 0, kVersionNumberMax);
}

}  // namespace

VersionNumbers load_version(const UserDataImage& image, int slot) {
  VersionNumbers numbers{};
  if (!has_slot(slot)) return numbers;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t tens = version_entry(slot, i);
    numbers[i] = image.entry(tens) * 10 + image.entry(tens + 1);
  }
  return numbers;
}

void store_version(UserDataImage& image, int slot, const VersionNumbers& numbers) {
  if (!has_slot(slot)) return;
  const VersionNumbers held = load_version(image, slot);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] == held[i]) continue;
    const std::size_t tens = version_entry(slot, i);
    image.set_entry(tens, in_range(numbers[i]) / 10);
    image.set_entry(tens + 1, in_range(numbers[i]) % 10);
  }
}

Traffic version_traffic(const UserDataImage& image, int slot) {
  Traffic traffic;
  if (!has_slot(slot)) return traffic;
  const std::uint8_t address = version_register(slot);
  for (std::size_t i = 0; i < VersionNumbers{}.size(); ++i) {
    const std::size_t tens = version_entry(slot, i);
    traffic.push_back({{address, image.entry(tens)}, {address, image.entry(tens + 1)}});
  }
  return traffic;
}

}  // namespace qv5123
