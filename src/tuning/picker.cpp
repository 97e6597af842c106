#include "tuning/picker.h"

#include <algorithm>

namespace qv5123 {

PickerPosition clamped(PickerPosition position) {
  return {std::clamp(position.x, 0, kPickerMaximumX), std::clamp(position.y, 0, kPickerMaximumY)};
}

PickerPosition moved(PickerPosition position, PickerMove move, int step_index) {
  const int step = move_step(step_index);
  position = clamped(position);
  switch (move) {
    case PickerMove::left:
      return clamped({position.x - step, position.y});
    case PickerMove::up:
      return clamped({position.x, position.y - step});
    case PickerMove::right:
      return clamped({position.x + step, position.y});
    case PickerMove::down:
      return clamped({position.x, position.y + step});
  }
  return position;
}

IspBytes picker_x_bytes(int x) {
  return {{picker_register::kX, high_byte(x)}, {picker_register::kX + 1, low_byte(x)}};
}

IspBytes picker_y_bytes(int y) {
  return {{picker_register::kY, high_byte(y)}, {picker_register::kY + 1, low_byte(y)}};
}

IspBytes picker_position_bytes(PickerPosition position) {
  IspBytes bytes = picker_y_bytes(position.y);
  for (const IspByte& byte : picker_x_bytes(position.x)) bytes.push_back(byte);
  return bytes;
}

IspBytes picker_switch_bytes(bool on, int enable) {
  if (on) return {{picker_register::kDisplay, 0x80}, {picker_register::kEnable, (enable | 0x80) & 0xFF}};
  return {{picker_register::kDisplay, 0x90}, {picker_register::kEnable, enable & 0x7F}};
}

Traffic picker_task_traffic(bool on) {
  const std::uint8_t running = on ? 0 : 1;
  return flushed_singly({{reg::kAeTask, running}, {reg::kAwbTask, running}});
}

}  // namespace qv5123
