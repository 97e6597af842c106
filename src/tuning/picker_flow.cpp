#include "tuning/picker_flow.h"

#include <utility>

namespace qv5123 {

Task<> write_isp_bytes(CommandLink& link, IspBytes bytes) {
  for (const IspByte& byte : bytes) co_await link.wide_write(byte.address, byte.value);
}

Task<PerColour> read_picker(CommandLink& link) {
  PerColour colour{};
  colour[0] = co_await link.wide_read(picker_register::kRed);
  colour[1] = co_await link.wide_read(picker_register::kGreen);
  colour[2] = co_await link.wide_read(picker_register::kBlue);
  co_return colour;
}

Task<> switch_picker(CommandLink& link, bool on, IspBytes bytes, PickerPosition position) {
  co_await write_isp_bytes(link, std::move(bytes));
  co_await link.send(picker_task_traffic(on));
  if (on) co_await write_isp_bytes(link, picker_position_bytes(position));
}

}  // namespace qv5123
