#include "tuning/dynamic.h"

#include <algorithm>

#include "tuning/brackets.h"
#include "tuning/full_save.h"
#include "tuning/layout.h"

namespace qv5123 {
namespace {

constexpr std::uint8_t kSourceSelect = 0x4E;
constexpr std::uint8_t kFirstKind = 0x4F;
constexpr std::uint8_t kSaturation = 0x5B;
constexpr std::uint8_t kFirstWeights = 0x2F;
constexpr std::uint8_t kOrientation = 0x5F;
constexpr std::uint8_t kHue = 0x60;
constexpr std::uint8_t kSmartIr = 0x67;
constexpr std::uint8_t kDpc = 0x8C;

constexpr std::size_t kWeightsEntry = 201;
constexpr std::size_t kRecordsEntry = 376;
constexpr std::size_t kSaturationEntry = 436;
constexpr std::size_t kHueEntry = 439;
constexpr std::size_t kDpcEntry = 475;
constexpr std::size_t kDpcDecisionEntry = 478;
constexpr std::size_t kSmartIrEntry = 583;

int limited_weight(int weight) {
  return std::clamp(weight, kWeightRange.lowest, kWeightRange.highest);
}

constexpr Encoding kFrom64{[](int value) { return value + 64; }, [](int stored) { return stored - 64; }};
constexpr Encoding kHueByte{encode_hue, decode_hue};
/// Whatever is above the largest weight can only be a negative one.
constexpr Encoding kWeight{limited_weight, [](int word) {
                             return limited_weight(word > kWeightRange.highest ? word - 0x10000 : word);
                           }};
constexpr Encoding kFormat{format_of_video_mode, video_mode_of_format};

template <class Record, class Visitor>
void record_image_layout(std::size_t source, Record& record, Visitor& visit) {
  visit.byte(kRecordsEntry + 2 * source, record.kind);
  visit.byte(kRecordsEntry + 2 * source + 1, record.value);
}

template <class Values, class Visitor>
void banks_image_layout(Values& values, Visitor& visit) {
  for (std::size_t bank = 0; bank < kStepBanks; ++bank)
    for (std::size_t row = 0; row < kStepRows; ++row)
      for (std::size_t step = 0; step < kStepColumns; ++step)
        visit.byte(kStepBankPlaces[bank].first_entry + kStepColumns * row + step,
                   values.banks[bank][row][step]);
}

/// All but the light-source records.
template <class Values, class Visitor>
void dynamic_image_layout(Values& values, Visitor& visit) {
  for (const DynamicNumber& number : kDynamicNumbers) visit.byte(number.entry, values.*number.value);
  visit.byte(kOrientationEntry, values.orientation);
  banks_image_layout(values, visit);
  for (std::size_t source = 0; source < kLightSources; ++source) {
    visit.word(kWeightsEntry + 4 * source, values.weights[source].r, kWeight);
    visit.word(kWeightsEntry + 4 * source + 2, values.weights[source].b, kWeight);
    visit.byte(kSaturationEntry + source, values.saturation[source], kFrom64);
  }
  visit.byte(kHueEntry, values.hue_angle, kHueByte);
  visit.byte(kDpcDecisionEntry, values.dpc_decision);
  visit.byte(kSmartIrEntry, values.smart_ir);
}

/// The chip names the same cell of all banks before it goes on to the next cell.
template <class Values, class Visitor>
void banks_reply_layout(Values& values, Visitor& visit) {
  for (std::size_t row = 0; row < kStepRows; ++row)
    for (std::size_t step = 0; step < kStepColumns; ++step)
      for (std::size_t bank = 0; bank < kStepBanks; ++bank)
        visit.byte(2 * (7 + kStepBanks * (kStepColumns * row + step) + bank), values.banks[bank][row][step]);
}

/// Places are those of characters, two to a byte.
template <class Values, class Visitor>
void dynamic_reply_layout(Values& values, Visitor& visit) {
  visit.byte(0, values.orientation);
  for (std::size_t i = 0; i < kDynamicNumbers.size(); ++i)
    visit.byte(2 * (1 + i), values.*kDynamicNumbers[i].value);
  banks_reply_layout(values, visit);
  for (std::size_t source = 0; source < kLightSources; ++source) {
    visit.byte(2 * (217 + 2 * source), values.light_sources[source].kind);
    visit.byte(2 * (218 + 2 * source), values.light_sources[source].value);
    visit.byte(2 * (223 + source), values.saturation[source], kFrom64);
    visit.word(2 * (228 + 4 * source), values.weights[source].r, kWeight);
    visit.word(2 * (230 + 4 * source), values.weights[source].b, kWeight);
  }
  visit.byte(2 * 226, values.dpc_decision);
  visit.byte(2 * 227, values.hue_angle, kHueByte);
  visit.byte(2 * 240, values.smart_ir);
  visit.byte(2 * 241, values.ir_led, kFlag);
  visit.byte(2 * 242, values.video_mode, kFormat);
}

bool known_kind(const LightSource& record) {
  return record.kind >= 0 && record.kind <= kHighestLightSourceKind;
}

Batch source_select(std::size_t source) {
  return {{kSourceSelect, static_cast<std::uint8_t>(source)}};
}

void add(Batch& batch, const Batch& more) {
  batch.insert(batch.end(), more.begin(), more.end());
}

Batch record_writes(const DynamicValues& values, std::size_t source) {
  const LightSource& record = values.light_sources[source];
  Batch writes = source_select(source);
  if (known_kind(record))
    writes.push_back({static_cast<std::uint8_t>(kFirstKind + record.kind), low_byte(record.value)});
  return writes;
}

Batch saturation_writes(const DynamicValues& values, std::size_t source) {
  Batch writes = source_select(source);
  writes.push_back({kSaturation, low_byte(kFrom64.encode(values.saturation[source]))});
  return writes;
}

Batch number_writes_of_save(const DynamicValues& values) {
  Batch writes{{kOrientation, low_byte(values.orientation)}};
  // The AE values leave in descending order, unlike in the image and in the reply.
  for (std::size_t i : {0, 1, 2, 5, 4, 3}) add(writes, number_write(values, kDynamicNumbers[i]));
  return writes;
}

Batch bank_writes_of_save(const DynamicValues& values) {
  Batch writes;
  for (std::size_t step = 0; step < kStepColumns; ++step) {
    writes.push_back({kStepSelectRegister, static_cast<std::uint8_t>(step)});
    for (std::size_t row = 0; row < kStepRows; ++row)
      for (std::size_t bank = 0; bank < kStepBanks; ++bank)
        writes.push_back({step_register(static_cast<BankId>(bank), row), values.banks[bank][row][step]});
  }
  return writes;
}

Batch colour_writes_of_save(const DynamicValues& values, const UserDataImage& image) {
  Batch writes;
  for (std::size_t source = 0; source < kLightSources; ++source) add(writes, record_writes(values, source));
  for (std::size_t source = 0; source < kLightSources; ++source)
    add(writes, saturation_writes(values, source));
  add(writes, hue_write(values));
  add(writes, dpc_write(values, image));
  for (std::size_t source = 0; source < kLightSources; ++source) add(writes, weights_write(values, source));
  add(writes, source_select(0));
  add(writes, smart_ir_write(values));
  return writes;
}

/// The grid's six rows go through the same checks as under their "Set" buttons.
Traffic rewrite_grid(DynamicSave& save, const StepGrid& grid) {
  Traffic traffic;
  const auto bank = selected_bank(save.values.ir_led, save.values.video_mode);
  if (!bank) return traffic;
  for (std::size_t row = 0; row < kStepRows; ++row) {
    StepRowWrite written = write_step_row(*bank, row, grid[row]);
    save.values.banks[static_cast<std::size_t>(*bank)][row] = written.bytes;
    append(traffic, std::move(written.traffic));
    save.messages.insert(save.messages.end(), written.messages.begin(), written.messages.end());
  }
  return traffic;
}

}  // namespace

std::optional<BankId> selected_bank(bool ir_led, int video_mode) {
  constexpr std::array kByVideoMode{BankId::Tvi, BankId::Ahd, BankId::Cvi, BankId::Cvbs};
  if (ir_led) return BankId::IrLed;
  if (video_mode < 0 || video_mode >= static_cast<int>(kByVideoMode.size())) return std::nullopt;
  return kByVideoMode[static_cast<std::size_t>(video_mode)];
}

int light_source_bar(const LightSource& record) {
  const int bar = record.kind == 0 ? -record.value : record.value;
  return std::clamp(bar, kLightSourceRange.lowest, kLightSourceRange.highest);
}

LightSource light_source_from_bar(int bar, const LightSource& before) {
  bar = std::clamp(bar, kLightSourceRange.lowest, kLightSourceRange.highest);
  if (bar < 0) return {0, -bar};
  if (bar > 0) return {before.kind == 2 ? 2 : 1, bar};
  return {before.kind, 0};
}

int video_mode_of_format(int code) {
  constexpr std::array kModes{0, 0, 1, 1, 2, 2, 0, 0, 1, 1, 2, 2, 3, 3};
  if (code < 0 || code >= static_cast<int>(kModes.size())) return code;
  return kModes[static_cast<std::size_t>(code)];
}

int format_of_video_mode(int video_mode) {
  constexpr std::array kFormats{0, 2, 4, 12};
  if (video_mode < 0 || video_mode >= static_cast<int>(kFormats.size())) return video_mode;
  return kFormats[static_cast<std::size_t>(video_mode)];
}

void save_to_user_data(const DynamicValues& values, UserDataImage& image) {
  ImageWriter writer(image);
  dynamic_image_layout(values, writer);
  for (std::size_t source = 0; source < kLightSources; ++source)
    if (known_kind(values.light_sources[source]))
      record_image_layout(source, values.light_sources[source], writer);
}

void reload_from_user_data(DynamicValues& values, const UserDataImage& image) {
  ImageReader reader(image);
  dynamic_image_layout(values, reader);
  for (std::size_t source = 0; source < kLightSources; ++source)
    record_image_layout(source, values.light_sources[source], reader);
}

std::optional<DynamicValues> decode_dynamic_reply(std::string_view reply, DynamicValues current) {
  ReplyReader reader(reply);
  dynamic_reply_layout(current, reader);
  if (reader.short_of()) return std::nullopt;
  return current;
}

std::string encode_dynamic_reply(const DynamicValues& values) {
  ReplyWriter writer;
  dynamic_reply_layout(values, writer);
  return writer.text();
}

void limit_weights(DynamicValues& values) {
  for (AwbWeights& weights : values.weights) weights = {limited_weight(weights.r), limited_weight(weights.b)};
}

Batch number_write(const DynamicValues& values, const DynamicNumber& number) {
  return {{number.address, low_byte(values.*number.value)}};
}

Traffic orientation_traffic(const DynamicValues& values) {
  return kept({{{kOrientation, low_byte(values.orientation)}}});
}

Traffic light_source_traffic(const DynamicValues& values, std::size_t source) {
  return kept(flushed_singly(record_writes(values, source)));
}

Traffic saturation_traffic(const DynamicValues& values, std::size_t source) {
  return kept(flushed_singly(saturation_writes(values, source)));
}

Batch weights_write(const DynamicValues& values, std::size_t source) {
  const auto address = static_cast<std::uint8_t>(kFirstWeights + source);
  Batch batch = word_write(address, limited_weight(values.weights[source].r));
  add(batch, word_write(address, limited_weight(values.weights[source].b)));
  return batch;
}

Batch hue_write(const DynamicValues& values) {
  return {{kHue, low_byte(encode_hue(values.hue_angle))}};
}

Batch dpc_write(const DynamicValues& values, const UserDataImage& image) {
  Batch batch;
  for (std::size_t i = 0; i < 3; ++i) batch.push_back({kDpc, image.entry(kDpcEntry + i)});
  batch.push_back({kDpc, low_byte(values.dpc_decision)});
  return batch;
}

Batch smart_ir_write(const DynamicValues& values) {
  return {{kSmartIr, low_byte(values.smart_ir)}};
}

DynamicSave dynamic_save(DynamicValues values, const StepGrid& grid, const UserDataImage& image) {
  DynamicSave save{std::move(values), {}, {}};
  Traffic block = flushed_singly(number_writes_of_save(save.values));
  append(block, rewrite_grid(save, grid));
  append(block, flushed_singly(bank_writes_of_save(save.values)));
  append(block, flushed_singly(colour_writes_of_save(save.values, image)));
  save.traffic = full_save(std::move(block));
  return save;
}

}  // namespace qv5123
