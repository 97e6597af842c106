#pragma once

#include <cstddef>
#include <cstdint>

/// Where the simulated chip has what several of its parts look at. It is the chip's own knowledge, and
/// nothing of the pages' layouts.
namespace qv5123 {

/// The register that chooses the light source of what follows.
inline constexpr std::uint8_t kLightSourceChoice = 0x4E;

/// First entries of the colour matrices.
namespace matrix_entry {
inline constexpr std::size_t kTvi = 382;
inline constexpr std::size_t kAhd = 749;
inline constexpr std::size_t kCvi = 845;
inline constexpr std::size_t kCvbs = 635;
}  // namespace matrix_entry

}  // namespace qv5123
