#include "tuning/picker_flow.h"

#include <utility>

#include "base/hex.h"
#include "link/indirect_access.h"

namespace qv5123 {

Task<bool> write_isp_bytes(CommandLink& link, IspBytes bytes) {
  bool all_left = true;
  for (const IspByte& byte : bytes) {
    const bool left = co_await link.wide_write(byte.address, byte.value);
    all_left = all_left && left;
  }
  co_return all_left;
}

Task<bool> move_picker(CommandLink& link, IspBytes position) {
  const CommandLink::Turn turn = co_await link.turn();
  co_return co_await write_isp_bytes(link, std::move(position));
}

Task<PerColour> read_picker(CommandLink& link) {
  IspBytes where_it_is;
  co_return co_await read_picker_at(link, std::move(where_it_is));
}

Task<PerColour> read_picker_at(CommandLink& link, IspBytes position, std::array<int, 3> registers) {
  const CommandLink::Turn turn = co_await link.turn();
  co_await write_isp_bytes(link, std::move(position));
  PerColour colour{};
  for (std::size_t c = 0; c < colour.size(); ++c) colour[c] = co_await link.wide_read(registers[c], turn);
  co_return colour;
}

Task<int> read_picker_register(CommandLink& link, int address) {
  const int value = co_await link.wide_read(address);
  if (value >= 0) co_return value;
  co_return co_await link.wide_read(address);
}

std::string no_answer_text(int address) {
  return "Color picker: no answer from 0xF" + upper_hex(static_cast<unsigned>(address), 3);
}

Task<std::string> switch_picker(CommandLink& link, bool on, IspBytes bytes, PickerPosition position) {
  bool all_left = co_await write_isp_bytes(link, std::move(bytes));
  const JobResult tasks = co_await link.send(picker_task_traffic(on));
  all_left = all_left && !tasks.failed;
  if (on) {
    const bool moved = co_await move_picker(link, picker_position_bytes(position));
    all_left = all_left && moved;
  }
  if (all_left) co_return std::string();
  co_return std::string("Color picker: not all of it reached the chip");
}

Task<std::string> switch_plain_picker(CommandLink& link, bool on, PickerSwitch picker) {
  const int enable = co_await read_picker_register(link, picker_register::kEnable);
  if (enable < 0) co_return no_answer_text(picker_register::kEnable);
  picker.off = picker_switch_bytes(false, enable);
  std::string trouble = co_await switch_picker(link, on, picker_switch_bytes(on, enable), picker.position);
  if (!on && trouble.empty()) picker.off.clear();
  co_return trouble;
}

IspBytes restored_beside_picker(const IspBytes& off) {
  IspBytes others = off;
  std::erase_if(others, [](const IspByte& byte) {
    return byte.address == picker_register::kDisplay || byte.address == picker_register::kEnable;
  });
  return others;
}

Traffic picker_off_traffic(const IspBytes& off) {
  Traffic traffic;
  if (off.empty()) return traffic;
  for (const IspByte& byte : off) {
    traffic.push_back(isp_write(byte.address, byte.value));
    traffic.emplace_back();
  }
  append(traffic, picker_task_traffic(false));
  return traffic;
}

}  // namespace qv5123
