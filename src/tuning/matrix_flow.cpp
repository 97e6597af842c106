#include "tuning/matrix_flow.h"

#include <algorithm>

#include "tuning/picker_flow.h"

namespace qv5123 {

Task<std::string> switch_matrix_picker(CommandLink& link, MatrixValues& values, bool on) {
  values.picker_on = on;
  if (on) values.manual_input = false;
  const int enable = co_await read_picker_register(link, picker_register::kEnable);
  if (enable < 0) co_return no_answer_text(picker_register::kEnable);
  co_return co_await switch_picker(link, on, picker_switch_bytes(on, enable), values.picker);
}

Task<bool> get_patch_color(CommandLink& link, MatrixValues& values, std::size_t patch) {
  const PerColour colour = co_await read_picker(link);
  if (*std::min_element(colour.begin(), colour.end()) < 0 || patch >= kPatches) co_return false;
  for (std::size_t c = 0; c < 3; ++c) values.measured[patch][c] = static_cast<std::uint32_t>(colour[c]);
  // Whoever chose another patch meanwhile is not to be moved away from it.
  if (values.patch_step <= 0 || values.patch != patch) co_return true;
  go_to_next_patch(values);
  co_await move_picker(link, picker_position_bytes(values.picker));
  co_return true;
}

}  // namespace qv5123
