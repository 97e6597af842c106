#include "tuning/gamma_desk.h"

#include <utility>

#include "base/delay.h"
#include "tuning/gamma_curve.h"
#include "tuning/page_flows.h"

namespace qv5123 {
namespace {

/// Lets the status line be painted before the save begins.
constexpr std::chrono::milliseconds kBeforeSave{50};

const char* name_of(GammaCurveId id) {
  return kGammaCurveNames[static_cast<std::size_t>(id)];
}

std::string name_of(const GammaHit& points) {
  std::string name = "Point " + std::to_string(points.point + 1);
  for (const GammaCurveId id : points.curves) name += std::string(" ") + name_of(id);
  return name;
}

std::string message_of(GammaCurveId id, const GammaCurve& curve) {
  std::string text = name_of(id);
  const char* before = ": ";
  for (const int point : curve) text += std::exchange(before, ", ") + std::to_string(point);
  return text;
}

}  // namespace

GammaDesk::GammaDesk(DeskHost& host, UserDataImage& image, double& front_gamma_level)
    : PageDesk(host, image), front_gamma_level_(front_gamma_level) {
  if (front_gamma_level_ == 0) front_gamma_level_ = kDefaultFrontGammaLevel;
  open_with_image();
}

void GammaDesk::attach(View& view) {
  TuningDesk::attach(view);
  gamma_view_ = &view;
}

Traffic GammaDesk::control_traffic(int control) const {
  return gamma_curve_traffic(values_, static_cast<GammaCurveId>(control));
}

std::vector<WriteNote::Value> GammaDesk::save_values() const {
  std::vector<WriteNote::Value> values = TuningDesk::save_values();
  // It is not what is chosen now that the save keeps.
  for (WriteNote::Value& value : values)
    if (value.field == field(values_.channel)) value.number = static_cast<int>(values_.loaded_channel);
  return values;
}

void GammaDesk::choose_channel(GammaChannel clicked) {
  const Changing change(*this, DeskChange::Kind::typed, "Channel");
  values_.channel = channel_after_click(clicked);
  view().show_values();
}

void GammaDesk::compute_end(Prompts& prompts) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::computed, "Gamma Value Set");
  if (set_end_gamma(values_, front_gamma_level_) == GammaResult::invalid)
    return spawn(prompts.message({"Invalid values."}));
  view().show_values();
  for (const GammaCurveId id : selected_curves(values_.channel))
    gamma_view_->add_message(message_of(id, values_.curve(id)));
  host().show_status("Gamma values calculated: " + selected_names());
}

void GammaDesk::compute_front(Prompts& prompts) {
  view().take_typed();
  const Changing change(*this, DeskChange::Kind::computed, "Front Gamma Value Set");
  if (set_front_gamma(values_) == GammaResult::invalid) return spawn(prompts.message({"Invalid values"}));
  host().show_status("Calculate Front Gamma values.");
  view().show_values();
}

std::string GammaDesk::selected_names() const {
  std::string names;
  for (const GammaCurveId id : selected_curves(values_.channel))
    names += (names.empty() ? "" : ", ") + std::string(name_of(id));
  return names;
}

void GammaDesk::apply() {
  view().take_typed();
  host().show_status("Gamma data applying...");
  spawn(run_apply());
}

Task<> GammaDesk::run_apply() {
  LongTraffic curves;
  curves.traffic = gamma_apply(values_);
  curves.done = "Gamma data apply done";
  std::vector<WriteNote::Value> values;
  for (const GammaCurveId id : selected_curves(values_.channel)) {
    const auto more = control_values(static_cast<int>(id));
    values.insert(values.end(), more.begin(), more.end());
  }
  expect(values);
  curves.note = note("Apply", std::move(values));
  co_await send_with_progress(host(), std::move(curves));
}

void GammaDesk::drag(const GammaHit& points, int value) {
  const Changing change(*this, DeskChange::Kind::dragged, name_of(points), drags_);
  move_gamma_point(values_, points, value);
  gamma_view_->show_moved(points);
}

void GammaDesk::nudge(const GammaHit& points, int delta) {
  const Changing change(*this, DeskChange::Kind::typed, name_of(points));
  for (const GammaCurveId id : points.curves) {
    int& value = values_.curve(id)[points.point];
    value = spin_gamma_point(value, delta);
  }
  gamma_view_->show_moved(points);
}

Task<> GammaDesk::save() {
  host().show_status("Gamma Data Saving...");
  co_await Delay(host().scheduler(), kBeforeSave);
  view().take_typed();
  co_await send_save(full_save(), "Gamma Save Done.");
}

}  // namespace qv5123
