#include "provision/desk_measurements.h"

#include <algorithm>

#include "base/delay.h"
#include "base/text.h"
#include "tuning/matrix_diagnosis.h"

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kLook{20};
constexpr char kStopped[] = "Interrupted";

/// Resumes once `busy` says no.
Task<> wait_for(UnattendedHost& host, std::function<bool()> busy) {
  while (busy()) co_await Delay(host.scheduler(), kLook);
}

/// The same for what ends when its button is pressed again.
template <class Desk>
Task<> wait_for(UnattendedHost& host, Desk& desk, bool (Desk::*busy)() const, void (Desk::*press)()) {
  bool stopping = false;
  std::function<bool()> look = [&] {
    if (host.stopped() && !stopping && (desk.*busy)()) (desk.*press)();
    stopping = host.stopped();
    return (desk.*busy)();
  };
  co_await wait_for(host, std::move(look));
}

/// Why the chip did not follow; empty when it did.
Task<std::string> switch_picker_of(UnattendedHost& host, PickerDesk& picker, bool on) {
  host.forget_failure();
  picker.click_switch(on);
  std::function<bool()> busy = [&picker] { return picker.switching(); };
  co_await wait_for(host, std::move(busy));
  if (picker.on() == on) co_return std::string();
  co_return host.last_failure();
}

/// What the page asks about before it sends.
std::string lens_doubts(const LensCalibration& found) {
  std::vector<std::string> doubts = lens_warnings(found);
  if (second_parameter_clamped(found)) {
    const double ripple = lens_line_ripple(found, found.fit.parameter1, found.fit.parameter2);
    doubts.push_back("Parameter-2 came out below 0, which the chip cannot do: a ripple of " +
                     fixed(ripple, 1) + " % would remain along the line.");
  }
  return joined(doubts, " ");
}

std::string lens_trouble(const UnattendedHost& host, const LensDesk& desk, const HeadlessPrompts& prompts,
                         Doubtful doubtful) {
  if (host.stopped()) return kStopped;
  if (prompts.asked() && doubtful == Doubtful::refuse) return lens_doubts(desk.calibration());
  if (!prompts.asked() && !prompts.last_message().empty()) return prompts.last_message();
  return host.last_failure();
}

/// The page's own "Measure all 24".
Task<std::string> measure_chart(UnattendedHost& host, MatrixDesk& desk) {
  host.forget_failure();
  desk.measure_all();
  co_await wait_for(host, desk, &MatrixDesk::measuring_all, &MatrixDesk::measure_all);
  if (host.stopped()) co_return std::string(kStopped);
  co_return desk.run_complaint().empty() ? host.last_failure() : desk.run_complaint();
}

void set_corners(MatrixDesk& desk, const ChartPlace& place) {
  desk.choose_patch_step(0);
  for (std::size_t corner = 0; corner < place.size(); ++corner) {
    desk.choose_patch(kCornerPatches[corner]);
    desk.picker().type_x(place[corner].x);
    desk.picker().type_y(place[corner].y);
    desk.set_corner();
  }
}

std::string matrix_doubts(const MatrixValues& values) {
  MatrixValues ready = values;
  set_matrix_rows(ready);
  return joined(matrix_warnings(ready), " ");
}

/// Empty, or why nothing was sent.
std::string fit_and_send(UnattendedHost& host, MatrixDesk& desk, Doubtful doubtful) {
  HeadlessPrompts prompts;
  host.forget_failure();
  desk.calculate(prompts);
  if (!prompts.last_message().empty()) return prompts.last_message();
  if (!host.last_failure().empty()) return host.last_failure();
  if (doubtful == Doubtful::refuse) {
    const std::string doubts = matrix_doubts(desk.values());
    if (!doubts.empty()) return doubts;
  }
  prompts.answer(Answer::yes);
  for (int row = 0; row < kMatrixRows; ++row) desk.set_row(static_cast<MatrixControl>(row), prompts);
  return {};
}

}  // namespace

Task<LensMeasurement> measure_lens(UnattendedHost& host, LensDesk& desk, Doubtful doubtful) {
  LensMeasurement result;
  result.trouble = co_await switch_picker_of(host, desk.picker(), true);
  if (!result.trouble.empty()) co_return result;
  HeadlessPrompts prompts;
  if (doubtful == Doubtful::send) prompts.answer(Answer::yes);
  desk.start_calibration(prompts);
  std::function<bool()> busy = [&] {
    // The switch ends a sweep.
    if (host.stopped() && desk.picker().on() && !desk.picker().switching()) desk.picker().click_switch(false);
    return desk.calibrating() || desk.picker().switching();
  };
  co_await wait_for(host, std::move(busy));
  result.trouble = lens_trouble(host, desk, prompts, doubtful);
  const LensCalibration& found = desk.calibration();
  result.ripple_before = lens_line_ripple(found);
  result.ripple = lens_line_ripple(found, desk.values().parameter1, desk.values().parameter2);
  co_return result;
}

Task<std::string> measure_field(UnattendedHost& host, LensDesk& desk) {
  host.forget_failure();
  desk.press_check_field();
  co_await wait_for(host, desk, &LensDesk::checking_field, &LensDesk::press_check_field);
  co_return host.stopped() ? std::string(kStopped) : host.last_failure();
}

std::optional<ChartPlace> straight_chart(PickerPosition first, int step) {
  const PickerPosition last{first.x + (kPatchesInRow - 1) * step,
                            first.y + (static_cast<int>(kPatches) / kPatchesInRow - 1) * step};
  if (last.x > kPickerMaximumX || last.y > kPickerMaximumY) return std::nullopt;
  return ChartPlace{first, PickerPosition{last.x, first.y}, last, PickerPosition{first.x, last.y}};
}

bool is_chart(const ChartPlace& place) {
  return patch_places({place[0], place[1], place[2], place[3]}).has_value();
}

Task<MatrixMeasurement> measure_matrix(UnattendedHost& host, MatrixDesk& desk, ChartPlace place, bool fit,
                                       Doubtful doubtful) {
  MatrixMeasurement result;
  set_corners(desk, place);
  result.trouble = co_await switch_picker_of(host, desk.picker(), true);
  if (!result.trouble.empty()) co_return result;
  result.trouble = co_await measure_chart(host, desk);
  if (result.trouble.empty() && fit) result.trouble = fit_and_send(host, desk, doubtful);
  if (result.trouble.empty())
    result.report = patch_report(desk.values().measured, desk.values().coefficients);
  co_await switch_picker_of(host, desk.picker(), false);
  // Of the rows as well, which have left by now.
  if (result.trouble.empty()) result.trouble = host.last_failure();
  co_return result;
}

Task<std::string> measure_awb(UnattendedHost& host, AwbDesk& desk) {
  host.forget_failure();
  desk.choose_patch(0);
  desk.get_color();
  std::function<bool()> busy = [&desk] { return desk.measuring(); };
  co_await wait_for(host, std::move(busy));
  co_return host.last_failure();
}

}  // namespace qv5123
