#include "cli/members.h"

#include <array>

namespace qv5123 {
namespace {

constexpr std::array<const char*, 3> kLights{"outdoor", "light1", "light2"};

/// A cell of a step table as the grid shows it. The ISO row's offset always
/// shows 1, so its byte is taken.
void add_step(Members<DynamicValues>& members, std::string name, std::size_t bank, std::size_t row,
              std::size_t column) {
  const auto byte = [=](auto& values) -> auto& {
    return values.banks[bank][row][column];
  };
  if (row == kRowIso && column == 0) return add_member(members, std::move(name), byte);
  const auto get = [=](const DynamicValues& values) {
    return decode_step_row(row, values.banks[bank][row])[column];
  };
  const auto set = [=](DynamicValues& values, int number) {
    StepCells cells{};
    cells[column] = number;
    byte(values) = encode_step_row(row, cells)[column];
  };
  members.push_back({std::move(name), get, set});
}

void add_steps(Members<DynamicValues>& members) {
  constexpr std::array<const char*, kStepBanks> kBanks{"tvi", "ir_led", "cvbs", "ahd", "cvi"};
  constexpr std::array<const char*, kStepRows> kRows{"iso", "bright",  "sharpness",
                                                     "nr",  "flat_nr", "contrast"};
  constexpr std::array<const char*, kStepColumns> kColumns{"offset", "step0", "step1", "step2",
                                                           "step3",  "step4", "step5"};
  for (std::size_t bank = 0; bank < kStepBanks; ++bank)
    for (std::size_t row = 0; row < kStepRows; ++row)
      for (std::size_t column = 0; column < kStepColumns; ++column)
        add_step(members, std::string(kBanks[bank]) + "." + kRows[row] + "." + kColumns[column], bank, row,
                 column);
}

void add_light(Members<DynamicValues>& members, std::size_t i) {
  const std::string light = std::string(kLights[i]) + ".";
  add_member(
      members, light + "kind", [i](auto& v) -> auto& { return v.light_sources[i].kind; });
  add_member(
      members, light + "value", [i](auto& v) -> auto& { return v.light_sources[i].value; });
  add_member(
      members, light + "saturation", [i](auto& v) -> auto& { return v.saturation[i]; });
  add_member(
      members, light + "weight_r", [i](auto& v) -> auto& { return v.weights[i].r; });
  add_member(
      members, light + "weight_b", [i](auto& v) -> auto& { return v.weights[i].b; });
}

}  // namespace

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

Members<DynamicValues> dynamic_members() {
  constexpr std::array<const char*, kDynamicNumbers.size()> kNames{
      "analog_gain", "sensor_digital_gain", "isp_digital_gain", "ae_target", "ae_speed", "further_ae"};
  Members<DynamicValues> members;
  for (std::size_t i = 0; i < kNames.size(); ++i)
    add_member(
        members, kNames[i], [i](auto& v) -> auto& { return v.*kDynamicNumbers[i].value; });
  add_member(
      members, "orientation", [](auto& v) -> auto& { return v.orientation; });
  add_steps(members);
  for (std::size_t i = 0; i < kLightSources; ++i) add_light(members, i);
  add_member(
      members, "hue_angle", [](auto& v) -> auto& { return v.hue_angle; });
  add_member(
      members, "dpc_decision", [](auto& v) -> auto& { return v.dpc_decision; });
  add_member(
      members, "smart_ir", [](auto& v) -> auto& { return v.smart_ir; });
  add_member(
      members, "ir_led", [](auto& v) -> auto& { return v.ir_led; });
  add_member(
      members, "video_mode", [](auto& v) -> auto& { return v.video_mode; });
  return members;
}

}  // namespace qv5123
