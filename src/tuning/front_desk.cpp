#include "tuning/front_desk.h"

#include <algorithm>
#include <utility>

#include "tuning/page_flows.h"

namespace qv5123 {

FrontDesk::FrontDesk(DeskHost& host, UserDataImage& image) : PageDesk(host, image) {
  if (image.loaded()) model().load(image);
}

Traffic FrontDesk::control_traffic(int control) const {
  const auto used = static_cast<FrontControl>(control);
  FrontValues values = values_;
  if (used == FrontControl::led_dimmer) values.led_dimmer = std::min(values.led_dimmer, kLedDimmerLimit);
  return {front_write(used, values)};
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
  values_.polarity = polarity;
  view().show_values();
  use(FrontControl::polarity);
}

void FrontDesk::use_color_suppress(PageHost& files) {
  view().take_typed();
  store(FrontControl::color_suppress);
  spawn(write_and_send(files, front_write(FrontControl::color_suppress, values_)));
}

Task<> FrontDesk::write_and_send(PageHost& files, Batch batch) {
  co_await files.write_user_data_file();
  link().send(std::move(batch));
}

void FrontDesk::limit_dimmer() {
  if (values_.led_dimmer <= kLedDimmerLimit) return;
  values_.led_dimmer = kLedDimmerLimit;
  view().show_values();
}

void FrontDesk::store(FrontControl control) {
  const auto& fields = model().fields();
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (fields[i].sent_by == static_cast<int>(control)) model().store_field(i, image());
}

void FrontDesk::send(FrontControl control) {
  link().send(front_write(control, values_));
}

Task<> FrontDesk::save(PageHost& files) {
  view().take_typed();
  model().store(image());
  FullSave on_chip = full_save();
  const bool written = co_await files.write_user_data_file();
  co_await send_save(std::move(on_chip), written ? "ISP Data Save Done." : kSavedOnChipOnly);
}

void FrontDesk::follow_file() {
  if (!reported_) return reload();
  view().take_typed();
  FrontValues file;
  load_page<FrontPage>(file, image());
  values_.delay = file.delay;
  values_.ir_on_off = file.ir_on_off;
  view().show_values();
}

}  // namespace qv5123
