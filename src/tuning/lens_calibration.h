#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/task.h"
#include "link/command_link.h"
#include "tuning/lens_checks.h"

namespace qv5123 {

/// Sets `values.picker_on` and brings the chip to it. The values must outlive the flow. What went wrong, in
/// words; empty when the chip followed. Nothing is written where the chip does not tell the bits to keep.
Task<std::string> switch_lens_picker(CommandLink& link, LensValues& values, bool on);

enum class CalibrationEnd {
  done,
  aborted,      ///< the picker was switched off meanwhile
  declined,     ///< what was fitted was not to be sent
  bad_reading,  ///< three readings in a row failed or were 0, or the port was lost
};

struct LensCalibrationResult {
  CalibrationEnd end = CalibrationEnd::done;
  LensCalibration calibration;  ///< without samples unless done or declined
  std::string log;              ///< what the fit adds to the log
  std::string message;          ///< of a bad reading, or of a port that failed; else empty
  std::string picker;           ///< why the picker is still on; else empty
};

/// Sweeps the picker along the line, fits the parameters, puts them into `values`, sends them and switches
/// the picker off. A position where a reading fails is read up to three times. Unless the sweep gets to its
/// end, nothing is sent and the old parameters stay. Who changes the ratio while it sends and switches gets
/// the parameters for it at the end.
///
/// `decide` looks at what was fitted before it is sent, and may ask the user. Where the old parameters are to
/// be kept, the page is no longer calibrated: the ratio would bring the others back.
///
/// `values` are the page's own, kept up to date by its controls and looked at before each position;
/// `on_sample` gets each sample as it comes.
Task<LensCalibrationResult> calibrate_lens(CommandLink& link, LensValues& values,
                                           std::function<void(const LensSample&)> on_sample,
                                           std::function<Task<LensDecision>(const LensCalibration&)> decide);

/// "Check field": measures at `positions` what the chip makes of the picture, its correction included, and
/// leaves the picker off. `on_reading` gets each as it comes and says whether to go on; who switches the
/// picker off meanwhile ends it. `on_switch` is called as `values` have come to say that the picker is on.
/// What went wrong, in words; empty when nothing did.
Task<std::string> check_field(CommandLink& link, LensValues& values, std::vector<PickerPosition> positions,
                              std::function<bool(const PerColour&)> on_reading,
                              std::function<void()> on_switch = {});

}  // namespace qv5123
