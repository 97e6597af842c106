#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "console/user_data_image.h"
#include "link/register_write.h"

/// "Userdata Control": the fine-tuning parameters that have no page of their own.
namespace qv5123 {

struct UserdataParameter {
  const char* name;
  /// Start of the line that shows the value.
  const char* label;
  std::size_t entry;
  std::uint8_t address;
  /// Entries that leave together, each as a write to `address`.
  std::size_t group_first;
  std::size_t group_count;
};
inline constexpr std::size_t kUserdataParameterCount = 34;
/// In the order of the combo box.
const std::array<UserdataParameter, kUserdataParameterCount>& userdata_parameters();

/// When a parameter's line is shown. The last parameter is spelled differently in the two.
enum class LineOf { selection, set };
/// The parameter's label and the image's value, with a line break.
std::string parameter_line(std::size_t row, const UserDataImage& image, LineOf occasion);

/// The other entries of the row's group, a line "NAME = 0x00" each; empty where it has none.
std::string parameter_others(std::size_t row, const UserDataImage& image);

/// "Set" of a row, after its value was stored into the image: the row's group, kept, every write a flush.
Traffic parameter_traffic(std::size_t row, const UserDataImage& image);

}  // namespace qv5123
