#include "tuning/lens_calibration.h"

#include <algorithm>
#include <utility>

#include "base/delay.h"
#include "tuning/picker_flow.h"

namespace qv5123 {
namespace {

constexpr int kMostTries = 3;
/// Before a position is read again: a reply that is late must not be taken for the next one.
constexpr std::chrono::milliseconds kLateReply{500};

/// What is wrong with the reading at `x`; empty when nothing is.
std::string complaint(int x, const PerColour& rgb) {
  static constexpr const char* kNames[] = {"red", "green", "blue"};
  const std::string at = " at X pos " + std::to_string(x);
  for (std::size_t c = 0; c < 3; ++c) {
    if (rgb[c] < 0) return std::string("Calibration stopped: no reading of ") + kNames[c] + at + ".";
    if (rgb[c] == 0) return std::string("Calibration stopped: ") + kNames[c] + " reads 0" + at + ".";
  }
  return {};
}

LensCalibrationResult ended(CalibrationEnd end, std::string message = {}) {
  LensCalibrationResult result;
  result.end = end;
  result.message = std::move(message);
  return result;
}

struct Reading {
  PerColour rgb{};
  std::string complaint;
};

/// Reads the picker at `x`, and again where a colour is missing: one byte that the line lost or held up is no
/// reason to give up a whole sweep. Not so once the port is another `connection` than the sweep began on: a
/// chip that was away measures no more, and what it says is no reading.
Task<Reading> read_at(CommandLink& link, const LensValues& values, int x, unsigned connection) {
  Reading reading;
  for (int tries = 1;; ++tries) {
    reading.rgb = co_await read_picker_at(link, picker_x_bytes(x));
    reading.complaint = complaint(x, reading.rgb);
    if (link.connection() != connection) {
      reading.complaint = "Calibration stopped: the connection was lost at X pos " + std::to_string(x) + ".";
      co_return reading;
    }
    if (reading.complaint.empty() || !values.picker_on || tries == kMostTries) co_return reading;
    co_await Delay(link.scheduler(), kLateReply);
  }
}

Job parameters_job(const LensValues& values) {
  WriteNote note{LensPage::kTexts.name, "CALIBRATION", {}};
  FieldNumbers numbers;
  LensPage::fields(values, numbers);
  for (std::size_t i = 0; i < numbers.numbers.size(); ++i) note.values.push_back({i, numbers.numbers[i]});
  return noted_job(lens_send_parameters(values), std::make_shared<WriteNote>(std::move(note)));
}

/// The readings of "Check field"; why they ended before the last, else nothing.
Task<std::string> measure_field(CommandLink& link, const LensValues& values,
                                const std::vector<PickerPosition>& positions,
                                const std::function<bool(const PerColour&)>& on_reading) {
  const unsigned connection = link.connection();
  for (const PickerPosition& position : positions) {
    IspBytes there = picker_position_bytes(position);
    const PerColour colour = co_await read_picker_at(link, std::move(there));
    // The chip measures nothing while it is being switched off.
    if (!values.picker_on) co_return std::string("Check field: the color picker was switched off.");
    if (*std::ranges::min_element(colour) < 0 || link.connection() != connection)
      co_return "Check field: no reading at " + std::to_string(position.x) + ", " +
          std::to_string(position.y) + ".";
    if (!on_reading(colour)) co_return std::string("Check field: stopped.");
  }
  co_return std::string();
}

/// Why the picker could not be switched off; empty when it could.
Task<std::string> end_measuring(CommandLink& link, LensValues& values) {
  std::string trouble = co_await switch_lens_picker(link, values, false);
  values.picker_on = !trouble.empty();
  co_return trouble;
}

}  // namespace

Task<std::string> switch_lens_picker(CommandLink& link, LensValues& values, bool on) {
  values.picker_on = on;
  const int enable = co_await read_picker_register(link, picker_register::kEnable);
  if (enable < 0) co_return no_answer_text(picker_register::kEnable);
  const int correction = co_await read_picker_register(link, picker_register::kCorrection);
  if (correction < 0) co_return no_answer_text(picker_register::kCorrection);
  values.picker_off = lens_picker_switch_bytes(false, enable, correction);
  IspBytes bytes = lens_picker_switch_bytes(on, enable, correction);
  std::string trouble = co_await switch_picker(link, on, std::move(bytes), values.picker);
  if (!on && trouble.empty()) values.picker_off.clear();
  co_return trouble;
}

Task<LensCalibrationResult> calibrate_lens(CommandLink& link, LensValues& values,
                                           std::function<void(const LensSample&)> on_sample,
                                           std::function<Task<LensDecision>(const LensCalibration&)> decide) {
  LensCalibrationResult result;
  LensCalibration& calibration = result.calibration;
  calibration.width = lens_line_width(values.screen_index);
  const unsigned connection = link.connection();

  for (int x : lens_positions(calibration.width)) {
    if (!values.picker_on) co_return ended(CalibrationEnd::aborted);
    Reading reading = co_await read_at(link, values, x, connection);
    if (!reading.complaint.empty()) {
      // The chip measures nothing while it is being switched off.
      if (!values.picker_on) co_return ended(CalibrationEnd::aborted);
      LensCalibrationResult stopped = ended(CalibrationEnd::bad_reading, std::move(reading.complaint));
      stopped.picker = co_await end_measuring(link, values);
      co_return stopped;
    }
    calibration.samples.push_back(lens_sample(x, reading.rgb));
    on_sample(calibration.samples.back());
  }

  calibration.centre = fit_lens_centre(calibration.samples, calibration.width);
  LensValues found = values;
  result.log = recompute_lens(calibration, found);
  const LensDecision decision = co_await decide(calibration);
  if (decision == LensDecision::keep_old) {
    result.end = CalibrationEnd::declined;
    result.log.pop_back();  // the mark of both rows sent
    values.calibrated = false;
    if (values.picker_on) result.picker = co_await end_measuring(link, values);
    co_return result;
  }
  calibration.first_alone = decision == LensDecision::send_first_alone;
  int ratio = 0;
  do {
    ratio = values.ratio;
    result.log = recompute_lens(calibration, values);
    const JobResult sent = co_await link.send(parameters_job(values));
    result.message = sent.failed ? "The parameters did not reach the chip: the port failed." : "";
    if (values.picker_on) result.picker = co_await end_measuring(link, values);
  } while (values.ratio != ratio);
  co_return result;
}

Task<std::string> check_field(CommandLink& link, LensValues& values, std::vector<PickerPosition> positions,
                              std::function<bool(const PerColour&)> on_reading,
                              std::function<void()> on_switch) {
  const int enable = co_await read_picker_register(link, picker_register::kEnable);
  if (enable < 0) co_return no_answer_text(picker_register::kEnable);
  const int correction = co_await read_picker_register(link, picker_register::kCorrection);
  if (correction < 0) co_return no_answer_text(picker_register::kCorrection);
  values.picker_off = lens_picker_switch_bytes(false, enable, correction);
  values.picker_on = true;
  if (on_switch) on_switch();
  IspBytes on = picker_switch_bytes(true, enable);
  // Behind the correction, which a calibration measures in front of.
  on.insert(on.begin(), {picker_register::kCorrection, correction | 0x10});
  std::string trouble = co_await switch_picker(link, true, std::move(on), positions.front());
  if (trouble.empty()) trouble = co_await measure_field(link, values, positions, on_reading);
  if (!values.picker_on) co_return trouble;
  const std::string left_on = co_await end_measuring(link, values);
  co_return trouble.empty() ? left_on : trouble;
}

}  // namespace qv5123
