#include "tuning/front_desk.h"

#include <algorithm>
#include <utility>

#include "tuning/brackets.h"
#include "tuning/page_flows.h"

namespace qv5123 {

FrontDesk::FrontDesk(DeskHost& host, UserDataImage& image) : PageDesk(host, image) {
  if (image.loaded()) open_with_image();
  note_file();
}

void FrontDesk::note_file() {
  if (image().loaded()) delay_known_ = ir_known_ = true;
}

std::string FrontDesk::unread_names() const {
  const std::string delay = delay_known_ ? "" : name_of(FrontControl::delay);
  const std::string ir = ir_known_ ? "" : name_of(FrontControl::ir_on_off);
  return delay + (delay.empty() || ir.empty() ? "" : ", ") + ir;
}

std::string FrontDesk::unread() const {
  std::string all = TuningDesk::unread();
  const std::string names = unread_names();
  return !all.empty() || names.empty() ? all : names + ": not read yet";
}

std::string FrontDesk::unread_saved() const {
  std::string all = TuningDesk::unread_saved();
  const std::string names = unread_names();
  if (!all.empty() || names.empty()) return all;
  return "The chip does not report these, and they come from no setting file: " + names + ".";
}

std::string FrontDesk::name_of(FrontControl control) const {
  for (const FieldInfo& field : model().fields())
    if (field.sent_by == static_cast<int>(control)) return field.caption.caption();
  return {};
}

Traffic FrontDesk::control_traffic(int control) const {
  const auto used = static_cast<FrontControl>(control);
  FrontValues values = values_;
  if (used == FrontControl::led_dimmer) values.led_dimmer = std::min(values.led_dimmer, kLedDimmerLimit);
  return {front_write(used, values)};
}

std::vector<WriteNote::Value> FrontDesk::control_values(int control) const {
  std::vector<WriteNote::Value> values = TuningDesk::control_values(control);
  if (static_cast<FrontControl>(control) == FrontControl::led_dimmer)
    for (WriteNote::Value& value : values) value.number = std::min(values_.led_dimmer, kLedDimmerLimit);
  return values;
}

Traffic FrontDesk::bracketed(Traffic body) const {
  return kept(std::move(body));
}

void FrontDesk::use(FrontControl control) {
  view().take_typed();
  if (control == FrontControl::led_dimmer) limit_dimmer();
  if (control != FrontControl::colour_order) store(control);
  send(control);
}

void FrontDesk::keep_colour_order() {
  view().take_typed();
  store(FrontControl::colour_order);
  send(FrontControl::colour_order);
}

void FrontDesk::set_polarity(int polarity) {
  // Before the values are shown again, which would undo what is being typed elsewhere.
  view().take_typed();
  {
    const Changing change(*this, DeskChange::Kind::typed, name_of(FrontControl::polarity));
    values_.polarity = polarity;
  }
  view().show_values();
  use(FrontControl::polarity);
}

void FrontDesk::use_color_suppress(PageHost& files) {
  view().take_typed();
  store(FrontControl::color_suppress);
  Traffic traffic{front_write(FrontControl::color_suppress, values_)};
  spawn(write_and_send(files, std::move(traffic),
                       control_values(static_cast<int>(FrontControl::color_suppress))));
}

Task<> FrontDesk::write_and_send(PageHost& files, Traffic traffic, std::vector<WriteNote::Value> values) {
  co_await files.write_user_data_file();
  send_noted(name_of(FrontControl::color_suppress), std::move(traffic), std::move(values));
}

void FrontDesk::limit_dimmer() {
  if (values_.led_dimmer <= kLedDimmerLimit) return;
  const Changing change(*this, DeskChange::Kind::computed, name_of(FrontControl::led_dimmer));
  values_.led_dimmer = kLedDimmerLimit;
  view().show_values();
}

void FrontDesk::store(FrontControl control) {
  const auto& fields = model().fields();
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (fields[i].sent_by == static_cast<int>(control)) model().store_field(i, image());
}

void FrontDesk::send(FrontControl control) {
  if (control == FrontControl::delay) delay_known_ = true;
  if (control == FrontControl::ir_on_off) ir_known_ = true;
  show_unread();
  send_control(name_of(control), static_cast<int>(control));
}

Task<> FrontDesk::save(PageHost& files) {
  view().take_typed();
  model().store(image());
  FullSave on_chip = full_save();
  const bool written = co_await files.write_user_data_file();
  co_await send_save(std::move(on_chip), written ? "ISP Data Save Done." : kSavedOnChipOnly);
}

void FrontDesk::follow_file() {
  note_file();
  if (!reported_) return reload();
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::from_file, "Load File");
  FrontValues file;
  load_page<FrontPage>(file, image());
  values_.delay = file.delay;
  values_.ir_on_off = file.ir_on_off;
  view().show_values();
  show_unread();
}

}  // namespace qv5123
