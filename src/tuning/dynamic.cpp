#include "tuning/dynamic.h"

#include "tuning/brackets.h"

namespace qv5123 {
namespace {

using namespace dynamic_register;

Batch source_select(std::size_t source) {
  return {{kLightSourceRegister, static_cast<std::uint8_t>(source)}};
}

void add(Batch& batch, const Batch& more) {
  batch.insert(batch.end(), more.begin(), more.end());
}

Batch record_writes(const DynamicValues& values, std::size_t source) {
  const LightSource& record = values.light_sources[source];
  Batch writes = source_select(source);
  if (record.known()) writes.push_back({low_byte(kFirstKind + record.kind), low_byte(record.value)});
  return writes;
}

Batch saturation_writes(const DynamicValues& values, std::size_t source) {
  Batch writes = source_select(source);
  writes.push_back({kSaturation, low_byte(kSaturationByte.encode(values.saturation[source]))});
  return writes;
}

Batch number_writes_of_save(const DynamicValues& values) {
  Batch writes{{kOrientation, low_byte(values.orientation)}};
  // The AE values leave in descending order, unlike in the image and in the reply.
  for (std::size_t number : {0, 1, 2, 5, 4, 3}) add(writes, number_write(values, number));
  return writes;
}

Batch bank_writes_of_save(const DynamicValues& values) {
  Batch writes;
  for (std::size_t step = 0; step < kStepColumns; ++step) {
    writes.push_back({kStepSelectRegister, static_cast<std::uint8_t>(step)});
    for (std::size_t row = 0; row < kStepRows; ++row)
      for (std::size_t bank = 0; bank < kStepBanks; ++bank)
        writes.push_back(step_write(static_cast<BankId>(bank), row, values.banks[bank][row][step]));
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

/// The six rows of the bank that is shown go through the same checks as under their "Set" buttons.
Traffic rewrite_grid(DynamicFullSave& save) {
  Traffic traffic;
  const auto bank = selected_bank(save.values.ir_led, save.values.video_mode);
  if (!bank) return traffic;
  StepGrid& grid = save.values.banks[static_cast<std::size_t>(*bank)];
  for (std::size_t row = 0; row < kStepRows; ++row) {
    StepRowWrite written = write_step_row(*bank, row, grid[row]);
    grid[row] = written.cells;
    append(traffic, std::move(written.traffic));
    save.messages.insert(save.messages.end(), written.messages.begin(), written.messages.end());
  }
  return traffic;
}

}  // namespace

std::optional<BankId> selected_bank(bool ir_led, int video_mode) {
  constexpr std::array kByVideoMode{BankId::tvi, BankId::ahd, BankId::cvi, BankId::cvbs};
  if (ir_led) return BankId::ir_led;
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

Batch number_write(const DynamicValues& values, std::size_t number) {
  return {{static_cast<std::uint8_t>(kFirstNumber + number), low_byte(values.*kDynamicNumbers[number])}};
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
  Batch batch = word_write(address, kWeight.encode(values.weights[source].r));
  add(batch, word_write(address, kWeight.encode(values.weights[source].b)));
  return batch;
}

Batch hue_write(const DynamicValues& values) {
  return {{kHue, low_byte(kHueByte.encode(values.hue_angle))}};
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

DynamicFullSave dynamic_full_save(DynamicValues values, const UserDataImage& image) {
  DynamicFullSave save{values, {}, {}};
  Traffic block = flushed_singly(number_writes_of_save(save.values));
  append(block, rewrite_grid(save));
  append(block, flushed_singly(bank_writes_of_save(save.values)));
  append(block, flushed_singly(colour_writes_of_save(save.values, image)));
  save.traffic = saved(std::move(block));
  return save;
}

}  // namespace qv5123
