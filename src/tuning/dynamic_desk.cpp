#include "tuning/dynamic_desk.h"

#include <algorithm>
#include <utility>

#include "base/delay.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{100};

constexpr char kGainQuestionTitle[] = "Gain Control";
constexpr char kGainQuestion[] = "If this option changed, must be reset of Image TUNE by ISO step";

std::string text_of(const StepMessage& message) {
  return message.title + ": " + message.text;
}

}  // namespace

DynamicDesk::DynamicDesk(DeskHost& host, UserDataImage& image)
    : PageDesk(host, image), first_cell_(field(values_.banks[0][0][0])) {
  // Saving a page that was opened after the file must not replace what the file said.
  if (image.loaded()) open_with_image();
}

void DynamicDesk::attach(View& view) {
  TuningDesk::attach(view);
  dynamic_view_ = &view;
}

void DynamicDesk::choose_source(std::size_t source) {
  view().take_typed();
  source_ = source;
  view().show_values();
}

void DynamicDesk::move_light_source_bar(int bar) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed, name_of(DynamicControl::light_source, source_));
  LightSource& record = values_.light_sources[source_];
  record = light_source_from_bar(bar, record);
  view().show_values();
}

std::optional<std::size_t> DynamicDesk::cell(std::size_t row, std::size_t step) const {
  const auto shown = bank();
  if (!shown) return std::nullopt;
  const auto place = static_cast<std::size_t>(*shown);
  return first_cell_ + (place * kStepRows + row) * kStepColumns + step;
}

void DynamicDesk::switch_ir_led(bool on) {
  view().take_typed();
  values_.ir_led = on;
  if (!on) video_mode_enabled_ = true;
  show_bank();
}

void DynamicDesk::choose_video_mode(int index) {
  view().take_typed();
  values_.video_mode = index;
  show_bank();
}

/// Another bank is no step to undo. The watcher hears of it all the same, for its marks.
void DynamicDesk::show_bank() {
  restore(model().keep());
}

void DynamicDesk::turn(int flags, bool on, PageHost& files) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::typed, name_of(DynamicControl::orientation));
  values_.orientation = (on ? values_.orientation | flags : values_.orientation & ~flags) & (kMirror | kFlip);
  view().show_values();
  model().store_field(field(values_.orientation), image());
  spawn(send_orientation(files));
}

Task<> DynamicDesk::send_orientation(PageHost& files) {
  Traffic traffic = orientation_traffic(values_);
  std::vector<WriteNote::Value> values = control_values(control_number(DynamicControl::orientation));
  co_await files.write_user_data_file();
  send_noted(name_of(DynamicControl::orientation), std::move(traffic), std::move(values));
}

void DynamicDesk::set(DynamicControl control, std::size_t index, Prompts& prompts) {
  view().take_typed();
  if (control == DynamicControl::first_number && index < kGainCount) return spawn(set_gain(index, prompts));
  if (control == DynamicControl::dpc_decision) return spawn(set_dpc(prompts));
  if (control == DynamicControl::step_row) return set_step_row(index / kStepRows, index % kStepRows, prompts);
  send_control(name_of(control, index), control_number(control, index));
}

std::string DynamicDesk::unread_dpc() const {
  if (image().loaded()) return {};
  std::string text =
      "DPC Alpha Adaptive, DPC Double Enable and DPC Double Weight come from the setting file, and none was "
      "loaded. They are sent as";
  const char* before = " ";
  for (std::size_t entry = kDpcEntry; entry < kDpcEntry + 3; ++entry)
    text += std::exchange(before, ", ") + std::to_string(image().entry(entry));
  return text + ".";
}

std::string DynamicDesk::unread_saved() const {
  const std::string page = TuningDesk::unread_saved();
  const std::string dpc = unread_dpc();
  return page + (page.empty() || dpc.empty() ? "" : "\n") + dpc;
}

Task<> DynamicDesk::set_dpc(Prompts& prompts) {
  const bool wanted = co_await agreed(prompts, unread_dpc());
  if (!wanted) co_return;
  view().take_typed();
  send_control(kDpcCaption, control_number(DynamicControl::dpc_decision));
}

Task<> DynamicDesk::set_gain(std::size_t number, Prompts& prompts) {
  Question question;
  question.text = kGainQuestion;
  question.title = kGainQuestionTitle;
  const Answer answer = co_await prompts.ask(std::move(question));
  if (answer == Answer::yes) {
    send_control(name_of(DynamicControl::first_number, number),
                 control_number(DynamicControl::first_number, number));
    co_return;
  }
  co_await restore_gain(field(values_.*kDynamicNumbers[number]), prompts);
}

Task<> DynamicDesk::restore_gain(std::size_t gain, Prompts& prompts) {
  const FieldInfo& info = model().fields()[gain];
  const int before = image().entry(static_cast<std::size_t>(info.entry));
  std::string unread;
  if (!image().loaded())
    unread = "The " + info.caption.caption() +
             " before comes from the setting file, and none was loaded. It becomes " +
             std::to_string(std::clamp(before, info.range.lowest, info.range.highest)) + ".";
  const bool wanted = co_await agreed(prompts, std::move(unread));
  if (!wanted) co_return;
  view().take_typed();
  // It is the bar that is put back, and a bar has no place outside its range.
  type(gain, before);
  view().show_values();
}

std::string DynamicDesk::name_of(DynamicControl control, std::size_t index) const {
  if (control == DynamicControl::weights) return "AWB Weight";
  if (control == DynamicControl::light_source) return "Light source Sum";
  for (const FieldInfo& info : model().fields())
    if (info.sent_by == control_number(control, index)) return info.caption.caption();
  return {};
}

void DynamicDesk::set_step_row(std::size_t bank, std::size_t row, Prompts& prompts) {
  const Changing change(*this, DeskChange::Kind::computed, std::string(kStepRules[row].caption) + " Set");
  StepCells& cells = values_.banks[bank][row];
  StepRowWrite written = write_step_row(static_cast<BankId>(bank), row, cells);
  cells = written.cells;
  view().show_values();
  const int control = control_number(DynamicControl::step_row, kStepRows * bank + row);
  send_noted(kStepRules[row].caption, std::move(written.traffic), control_values(control));
  spawn(tell(std::move(written.messages), prompts));
}

Task<> DynamicDesk::tell(std::vector<StepMessage> messages, Prompts& prompts) {
  for (const StepMessage& told : messages) {
    dynamic_view_->add_message(text_of(told));
    Message message;
    message.text = told.text;
    message.title = told.title;
    message.icon = Message::Icon::stop;
    co_await prompts.message(std::move(message));
  }
}

Task<> DynamicDesk::save(Prompts& prompts) {
  host().show_status("AE_Tune Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  view().take_typed();
  DynamicFullSave all = corrected_save();
  view().show_values();
  spawn(tell(std::move(all.messages), prompts));
  FullSave on_chip{std::move(all.traffic), kFlashStoreTime, {}, save_values()};
  co_await send_save(std::move(on_chip), "Data Save Done...");
}

DynamicFullSave DynamicDesk::corrected_save() {
  const Changing change(*this, DeskChange::Kind::computed, "File/Flash Save");
  DynamicFullSave all = dynamic_full_save(values_, image());
  values_ = all.values;
  return all;
}

/// A record of no known kind is not sent.
std::vector<WriteNote::Value> DynamicDesk::without_unknown_sources(
    std::vector<WriteNote::Value> values) const {
  for (const LightSource& source : values_.light_sources) {
    if (source.known()) continue;
    std::erase_if(values, [&](const WriteNote::Value& value) {
      return value.field == field(source.kind) || value.field == field(source.value);
    });
  }
  return values;
}

std::vector<WriteNote::Value> DynamicDesk::control_values(int control) const {
  return without_unknown_sources(TuningDesk::control_values(control));
}

std::vector<WriteNote::Value> DynamicDesk::save_values() const {
  return without_unknown_sources(TuningDesk::save_values());
}

/// The cells one by one as they are, since the row's own "Set" would correct them; and the choice of the
/// light source as the full save leaves it.
Traffic DynamicDesk::values_traffic(const std::vector<std::size_t>& fields) const {
  constexpr std::size_t kCells = kStepBanks * kStepRows * kStepColumns;
  Traffic traffic;
  std::vector<std::size_t> others;
  for (const std::size_t field : fields) {
    if (field < first_cell_ || field >= first_cell_ + kCells) {
      others.push_back(field);
      continue;
    }
    const std::size_t cell = field - first_cell_;
    const std::size_t bank = cell / kStepColumns / kStepRows;
    const std::size_t row = cell / kStepColumns % kStepRows;
    const std::size_t step = cell % kStepColumns;
    append(traffic, RegisterWrite{kStepSelectRegister, low_byte(static_cast<int>(step))});
    append(traffic, step_write(static_cast<BankId>(bank), row, values_.banks[bank][row][step]));
  }
  append(traffic, TuningDesk::values_traffic(others));
  append(traffic, RegisterWrite{kLightSourceRegister, 0});
  return traffic;
}

void DynamicDesk::limit(const std::vector<std::size_t>& fields) {
  for (const std::size_t field : fields) {
    if (field < first_cell_) continue;
    const std::size_t row = (field - first_cell_) / kStepColumns;
    if (row >= kStepBanks * kStepRows) continue;
    StepCells& cells = values_.banks[row / kStepRows][row % kStepRows];
    cells = write_step_row(static_cast<BankId>(row / kStepRows), row % kStepRows, cells).cells;
  }
}

FullSave DynamicDesk::make_save() {
  DynamicFullSave all = corrected_save();
  FullSave save{std::move(all.traffic), kFlashStoreTime, {}, {}};
  for (const StepMessage& message : all.messages) save.corrections.push_back(text_of(message));
  return save;
}

Traffic DynamicDesk::control_traffic(int control) const {
  const auto index_in = [control](DynamicControl first) {
    return static_cast<std::size_t>(control - control_number(first));
  };
  const auto is_at_least = [control](DynamicControl first) { return control >= control_number(first); };
  if (is_at_least(DynamicControl::step_row)) {
    const std::size_t bank = index_in(DynamicControl::step_row) / kStepRows;
    const std::size_t row = index_in(DynamicControl::step_row) % kStepRows;
    return write_step_row(static_cast<BankId>(bank), row, values_.banks[bank][row]).traffic;
  }
  if (is_at_least(DynamicControl::weights))
    return {weights_write(values_, index_in(DynamicControl::weights))};
  if (is_at_least(DynamicControl::saturation))
    return saturation_traffic(values_, index_in(DynamicControl::saturation));
  if (is_at_least(DynamicControl::light_source))
    return light_source_traffic(values_, index_in(DynamicControl::light_source));
  if (control == control_number(DynamicControl::smart_ir)) return {smart_ir_write(values_)};
  if (control == control_number(DynamicControl::dpc_decision)) return {dpc_write(values_, image())};
  if (control == control_number(DynamicControl::hue_angle)) return {hue_write(values_)};
  if (control == control_number(DynamicControl::orientation)) return orientation_traffic(values_);
  return {number_write(values_, index_in(DynamicControl::first_number))};
}

}  // namespace qv5123
