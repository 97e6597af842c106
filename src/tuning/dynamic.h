#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "console/user_data_image.h"
#include "link/register_write.h"
#include "tuning/desk_texts.h"
#include "tuning/field_visitors.h"
#include "tuning/step_table.h"
#include "tuning/video_mode.h"

/// The dynamic AE/AWB control page without its window.
///
/// The chip reports 243 bytes: orientation, the six numbers ("03" "0a0b0c0d0e0f": both ways turned, analog
/// gain 10), then the step tables cell by cell, of each cell the five banks (TVI, IR-LED, CVBS, AHD, CVI),
/// the light sources, their saturation, hue, and the AWB weights as words: "ffce" is -50. A cell is sent by
/// its column and its row's register: "@4102*" "@ce14*" is 20 for column 2 of AHD's ISO row.
namespace qv5123 {

namespace dynamic_register {
inline constexpr std::uint8_t kFirstWeights =
    0x2F;                                           ///< of Outdoor; the other light sources have the next two
inline constexpr std::uint8_t kFirstNumber = 0x37;  ///< of kDynamicNumbers, which have the next five
inline constexpr std::uint8_t kFirstKind = 0x4F;    ///< a light source's value, if it is of kind 0
inline constexpr std::uint8_t kSaturation = 0x5B;
inline constexpr std::uint8_t kOrientation = 0x5F;
inline constexpr std::uint8_t kHue = 0x60;
inline constexpr std::uint8_t kSmartIr = 0x67;
inline constexpr std::uint8_t kDpc = 0x8C;
}  // namespace dynamic_register

inline constexpr int kLightSourceKinds = 3;

/// A light-source selection record: kind 0, 1 or 2, and its value 0..255.
struct LightSource {
  int kind = 0;
  int value = 0;
  constexpr bool known() const { return kind >= 0 && kind < kLightSourceKinds; }
  friend bool operator==(const LightSource&, const LightSource&) = default;
};

/// AWB weights of one light source, -50..50.
struct AwbWeights {
  int r = 0;
  int b = 0;
  friend bool operator==(const AwbWeights&, const AwbWeights&) = default;
};

/// The first of three bytes that "Decision Value", the fourth, is sent with. No page holds them.
inline constexpr std::size_t kDpcEntry = 475;
inline constexpr char kDpcCaption[] = "Decision Value";

inline constexpr int kMirror = 1;
inline constexpr int kFlip = 2;

/// What the page shows; it starts where its bars stand before anything is loaded.
struct DynamicValues {
  int analog_gain = 1;
  int sensor_digital_gain = 1;
  int isp_digital_gain = 1;
  int ae_target = 0;
  int ae_speed = 1;
  /// Register 0x3C; what the chip makes of it is not known to the page.
  int further_ae = 0;
  /// kMirror, kFlip.
  int orientation = 0;
  /// By BankId.
  std::array<StepGrid, kStepBanks> banks{neutral_step_bank(), neutral_step_bank(), neutral_step_bank(),
                                         neutral_step_bank(), neutral_step_bank()};
  std::array<LightSource, kLightSources> light_sources{};
  std::array<int, kLightSources> saturation{};
  std::array<AwbWeights, kLightSources> weights{};
  int hue_angle = 0;
  int dpc_decision = 1;
  int smart_ir = 0;
  /// "Case of IR-LED".
  bool ir_led = false;
  /// Index of "Video Mode:", or a chip's video format code of 14 or more that none of them stands for.
  int video_mode = 0;
  friend bool operator==(const DynamicValues&, const DynamicValues&) = default;
};

/// The bank that the grid shows; nothing when the chip reported a video format that no bank belongs to.
std::optional<BankId> selected_bank(bool ir_led, int video_mode);

/// The numbers with a bar, an edit and a "Set" of one write, in reply order. The first three ask before they
/// are set, since the ISO steps depend on them.
inline constexpr std::array<int DynamicValues::*, 6> kDynamicNumbers{
    &DynamicValues::analog_gain,      &DynamicValues::sensor_digital_gain,
    &DynamicValues::isp_digital_gain, &DynamicValues::ae_target,
    &DynamicValues::ae_speed,         &DynamicValues::further_ae};
inline constexpr std::size_t kGainCount = 3;

/// "Light source Sum :", the bar.
inline constexpr Range kLightSourceRange{-250, 250};
/// Its position for a record: the value, negated for kind 0.
int light_source_bar(const LightSource& record);
/// The record after the bar was moved: below 0 kind 0, above 0 kind 1 unless it was 2; at 0 the kind stays.
LightSource light_source_from_bar(int bar, const LightSource& before);

inline constexpr Encoding kSaturationByte{[](int value) { return value + 64; },
                                          [](int stored) { return stored - 64; }};
/// One byte for -45..45: angles below 0 follow after 45.
inline constexpr Encoding kHueByte{[](int angle) { return angle >= 0 ? angle : 45 - angle; },
                                   [](int stored) { return stored <= 45 ? stored : 45 - stored; }};

inline constexpr Range kWeightRange{-50, 50};
constexpr int limited_weight(int weight) {
  return std::clamp(weight, kWeightRange.lowest, kWeightRange.highest);
}
/// Whatever is above the largest weight can only be a negative one.
inline constexpr Encoding kWeight{
    limited_weight,
    [](int word) { return limited_weight(word > kWeightRange.highest ? word - 0x10000 : word); }};
/// What is kept of it is the position of a bar, which has none below 1.
inline constexpr Encoding kDpcByte{[](int value) { return value; },
                                   [](int stored) { return stored < 1 ? 1 : stored; }};

/// "Video Mode:" index for a chip's video format code; codes above 13 stay as they are.
constexpr int video_mode_of_format(int code) {
  constexpr std::array kModes{0, 0, 1, 1, 2, 2, 0, 0, 1, 1, 2, 2, 3, 3};
  return code >= 0 && code < static_cast<int>(kModes.size()) ? kModes[static_cast<std::size_t>(code)] : code;
}
/// A format code that video_mode_of_format maps to `video_mode`.
constexpr int format_of_video_mode(int video_mode) {
  constexpr std::array kFormats{0, 2, 4, 12};
  return video_mode >= 0 && video_mode < static_cast<int>(kFormats.size())
             ? kFormats[static_cast<std::size_t>(video_mode)]
             : video_mode;
}
inline constexpr Encoding kFormat{format_of_video_mode, video_mode_of_format};

/// The page's controls that send values.
enum class DynamicControl {
  first_number,  ///< six, as in kDynamicNumbers
  orientation = first_number + static_cast<int>(kDynamicNumbers.size()),
  hue_angle,
  dpc_decision,
  smart_ir,
  light_source,  ///< one for each light source, and so the two after it
  saturation = light_source + kLightSources,
  weights = saturation + kLightSources,
  step_row = weights + kLightSources,  ///< six for each bank
};
/// The control's number where there are several of it: `index` is that of the number, the light source, or
/// the row, kStepRows to a bank.
constexpr int control_number(DynamicControl control, std::size_t index = 0) {
  return static_cast<int>(control) + static_cast<int>(index);
}

/// The page: a reply of 243 bytes.
struct DynamicPage {
  using Values = DynamicValues;
  static constexpr DeskTexts kTexts{"dynamic", 0x69, "AE_Tune Data Load Fail...", "Load Isp ok",
                                    "Load File ok"};

  template <class V, class Visitor>
  static constexpr void fields(V& values, Visitor& visit) {
    numbers(values, visit);
    visit.byte({"orientation"}, values.orientation,
               {.caption = {"Mirror/Flip"},
                .entry = 291,
                .reply = 0,
                .address = dynamic_register::kOrientation,
                .sent_by = control_number(DynamicControl::orientation),
                .saved = true});
    for (std::size_t bank = 0; bank < kStepBanks; ++bank)
      for (std::size_t row = 0; row < kStepRows; ++row) step_row(bank, row, values.banks[bank][row], visit);
    for (std::size_t source = 0; source < kLightSources; ++source) light(source, values, visit);
    single_values(values, visit);
  }

  /// Leaves the entries of a light-source record of no known kind alone.
  static void store(const Values& values, UserDataImage& image) {
    const UserDataImage before = image;
    store_fields<DynamicPage>(values, image);
    for (std::size_t source = 0; source < kLightSources; ++source) {
      const auto record = static_cast<std::size_t>(record_entry(source));
      if (!values.light_sources[source].known()) image.set_word(record, before.word(record));
    }
  }

 private:
  /// Places in the reply are those of characters, two to a byte.
  static constexpr int reply_byte(std::size_t byte) { return 2 * static_cast<int>(byte); }
  static constexpr int record_entry(std::size_t source) { return 376 + 2 * static_cast<int>(source); }

  template <class V, class Visitor>
  static constexpr void numbers(V& values, Visitor& visit) {
    number({"analog_gain"}, {"Sensor Analog Gain"}, 0, {1, 100}, values, visit);
    number({"sensor_digital_gain"}, {"Sensor Digital Gain"}, 1, {1, 100}, values, visit);
    number({"isp_digital_gain"}, {"ISP Digital Gain"}, 2, {1, 127}, values, visit);
    number({"ae_target"}, {"AE Target"}, 3, {0, 50}, values, visit);
    number({"ae_speed"}, {"AE Speed"}, 4, {1, 8}, values, visit);
    number({"further_ae"}, {"AE 0x3C"}, 5, {0, 255}, values, visit);
  }
  template <class V, class Visitor>
  static constexpr void number(const Words& name, const Words& caption, std::size_t i, const Range& range,
                               V& values, Visitor& visit) {
    visit.byte(name, values.*kDynamicNumbers[i],
               {.caption = caption,
                .entry = 285 + static_cast<int>(i),
                .reply = reply_byte(1 + i),
                .range = range,
                .address = dynamic_register::kFirstNumber + static_cast<int>(i),
                .sent_by = control_number(DynamicControl::first_number, i),
                .saved = true});
  }

  /// The chip names the same cell of all banks before it goes on to the next cell.
  template <class Row, class Visitor>
  static constexpr void step_row(std::size_t bank, std::size_t row, Row& cells, Visitor& visit) {
    const StepRowRule& rule = kStepRules[row];
    for (std::size_t step = 0; step < kStepColumns; ++step) {
      const std::size_t cell = kStepColumns * row + step;
      // The offset of ISO is no number that anybody types.
      const bool is_kept_byte = row == kRowIso && step == 0;
      visit.byte({kStepBankPlaces[bank].name, rule.name, kStepColumnNames[step]}, cells[step],
                 {.caption = {rule.caption, kStepColumnLabels[step]},
                  .entry = kStepBankPlaces[bank].first_entry + static_cast<int>(cell),
                  .reply = reply_byte(7 + kStepBanks * cell + bank),
                  .range = is_kept_byte ? Range{} : rule.range,
                  .limited_when_sent = true,
                  .address = step_register(static_cast<BankId>(bank), row),
                  .sent_by = control_number(DynamicControl::step_row, kStepRows * bank + row),
                  .saved = true,
                  .as = &rule.as});
    }
  }

  template <class V, class Visitor>
  static constexpr void light(std::size_t source, V& values, Visitor& visit) {
    const char* name = kLightSourceKeys[source];
    record(name, source, values.light_sources[source], visit);
    visit.byte({name, "saturation"}, values.saturation[source],
               {.caption = {"Saturation"},
                .entry = 436 + static_cast<int>(source),
                .reply = reply_byte(223 + source),
                .range = {-64, 191},
                .address = dynamic_register::kSaturation,
                .sent_by = control_number(DynamicControl::saturation, source),
                .saved = true,
                .as = &kSaturationByte});
    weight({name, "weight_r"}, {"AWB R Weight"}, source, 0, values.weights[source].r, visit);
    weight({name, "weight_b"}, {"AWB B Weight"}, source, 1, values.weights[source].b, visit);
  }
  template <class Record, class Visitor>
  static constexpr void record(const char* name, std::size_t source, Record& record, Visitor& visit) {
    Field field{.caption = {"Light source kind"},
                .entry = record_entry(source),
                .reply = reply_byte(217 + 2 * source),
                .range = {0, kLightSourceKinds - 1},
                .sent_by = control_number(DynamicControl::light_source, source),
                .saved = true};
    visit.byte({name, "kind"}, record.kind, field);
    field.caption = {"Light source value"};
    field.entry += 1;
    field.reply += 2;
    field.range = {0, 255};
    visit.byte({name, "value"}, record.value, field);
  }
  template <class T, class Visitor>
  static constexpr void weight(const Words& name, const Words& caption, std::size_t source, std::size_t place,
                               T& value, Visitor& visit) {
    visit.word(name, value,
               {.caption = caption,
                .entry = 201 + static_cast<int>(4 * source + 2 * place),
                .reply = reply_byte(228 + 4 * source + 2 * place),
                .range = kWeightRange,
                .address = dynamic_register::kFirstWeights + static_cast<int>(source),
                .sent_by = control_number(DynamicControl::weights, source),
                .saved = true,
                .as = &kWeight});
  }

  static constexpr std::array<const char*, 4> kSmartIrItems{"0", "1", "2", "3"};

  template <class V, class Visitor>
  static constexpr void single_values(V& values, Visitor& visit) {
    visit.byte({"hue_angle"}, values.hue_angle,
               {.caption = {"Angle"},
                .entry = 439,
                .reply = reply_byte(227),
                .range = {-45, 45},
                .unit = "degrees of hue, for all light sources",
                .address = dynamic_register::kHue,
                .sent_by = control_number(DynamicControl::hue_angle),
                .saved = true,
                .as = &kHueByte});
    visit.byte({"dpc_decision"}, values.dpc_decision,
               {.caption = {kDpcCaption},
                .entry = static_cast<int>(kDpcEntry) + 3,
                .reply = reply_byte(226),
                .range = {1, 255},
                .address = dynamic_register::kDpc,
                .sent_by = control_number(DynamicControl::dpc_decision),
                .saved = true,
                .as = &kDpcByte});
    visit.byte({"smart_ir"}, values.smart_ir,
               {.caption = {"Smart IR"},
                .entry = 583,
                .reply = reply_byte(240),
                .range = {0, 3},
                .format = FieldFormat::list,
                .items = kSmartIrItems,
                .address = dynamic_register::kSmartIr,
                .sent_by = control_number(DynamicControl::smart_ir),
                .saved = true});
    visit.byte({"ir_led"}, values.ir_led,
               {.caption = {"Case of IR-LED"}, .reply = reply_byte(241), .range = {0, 1}, .as = &kFlag});
    visit.byte({"video_mode"}, values.video_mode,
               {.caption = {"Video Mode"},
                .reply = reply_byte(242),
                .range = {0, 3},
                .format = FieldFormat::list,
                .items = kVideoModeNames,
                .as = &kFormat});
  }
};
static_assert(fields_hold<DynamicPage>());

Batch number_write(const DynamicValues& values, std::size_t number);
/// "MIRROR", "FLIP" and "None".
Traffic orientation_traffic(const DynamicValues& values);
/// "Set" of "Light source Sum :"; `source` is 0..2 here and below.
Traffic light_source_traffic(const DynamicValues& values, std::size_t source);
Traffic saturation_traffic(const DynamicValues& values, std::size_t source);
/// "Set" of the AWB weights: one flush of four writes.
Batch weights_write(const DynamicValues& values, std::size_t source);
Batch hue_write(const DynamicValues& values);
/// "Set" of "Decision Value": three parameters that only the image knows, and the value.
Batch dpc_write(const DynamicValues& values, const UserDataImage& image);
Batch smart_ir_write(const DynamicValues& values);

/// How long the chip is left alone after a full save: it stores to flash.
inline constexpr std::chrono::seconds kFlashStoreTime{10};

struct DynamicFullSave {
  /// The values after the order of the shown bank's rows was corrected.
  DynamicValues values;
  Traffic traffic;
  std::vector<StepMessage> messages;
};
/// "File/Flash Save".
DynamicFullSave dynamic_full_save(DynamicValues values, const UserDataImage& image);

}  // namespace qv5123
