#include "cli/members.h"

#include <array>

namespace qv5123 {

Members<FrontValues> front_members() {
  Members<FrontValues> members;
  add_member(
      members, "video_mode", [](auto& v) -> auto& { return v.video_mode; });
  add_member(
      members, "colour_order", [](auto& v) -> auto& { return v.colour_order; });
  add_member(
      members, "tdn_mode", [](auto& v) -> auto& { return v.tdn_mode; });
  add_member(
      members, "delay", [](auto& v) -> auto& { return v.delay; });
  add_member(
      members, "ir_on_off", [](auto& v) -> auto& { return v.ir_on_off; });
  add_member(
      members, "led_dimmer", [](auto& v) -> auto& { return v.led_dimmer; });
  add_member(
      members, "polarity", [](auto& v) -> auto& { return v.polarity; });
  constexpr std::array<const char*, 4> kClampNames{"r", "gr", "gb", "b"};
  for (std::size_t i = 0; i < kClampNames.size(); ++i)
    add_member(
        members, std::string("clamp.") + kClampNames[i], [i](auto& v) -> auto& { return v.clamp[i]; });
  add_member(
      members, "wdr_state", [](auto& v) -> auto& { return v.wdr_state; });
  constexpr std::array<const char*, kFrontFlagCount> kFlags{
      "test_pattern", "raw_data", "gamma", "brightness", "sharpness",
      "saturation",   "hue",      "dpc",   "ae_task",    "awb_task"};
  for (std::size_t i = 0; i < kFlags.size(); ++i)
    add_member(
        members, std::string("flag.") + kFlags[i], [i](auto& v) -> auto& { return v.flags[i]; });
  add_member(
      members, "color_suppress", [](auto& v) -> auto& { return v.color_suppress; });
  return members;
}

}  // namespace qv5123
