#pragma once

#include <functional>
#include <string>

#include "base/task.h"
#include "link/command_link.h"
#include "tuning/lens_fit.h"

namespace qv5123 {

/// Sets `values.picker_on` and brings the chip to it. The values must outlive the flow. What went wrong, in
/// words; empty when the chip followed. Nothing is written where the chip does not tell the bits to keep.
Task<std::string> switch_lens_picker(CommandLink& link, LensValues& values, bool on);

enum class CalibrationEnd {
  done,
  aborted,      ///< the picker was switched off meanwhile
  bad_reading,  ///< three readings in a row failed or were 0, or the port was lost
};

struct LensCalibrationResult {
  CalibrationEnd end = CalibrationEnd::done;
  LensCalibration calibration;  ///< without samples unless done
  std::string log;              ///< what the fit adds to the log
  std::string message;          ///< of a bad reading, or of a port that failed; else empty
  std::string picker;           ///< why the picker is still on; else empty
};

/// Sweeps the picker along the line, fits the parameters, puts them into `values`, sends them and switches
/// the picker off. A position where a reading fails is read up to three times. Unless the sweep gets to its
/// end, nothing is sent and the old parameters stay. Who changes the ratio while it sends and switches gets
/// the parameters for it at the end.
///
/// `values` are the page's own, kept up to date by its controls and looked at before each position;
/// `on_sample` gets each sample as it comes.
Task<LensCalibrationResult> calibrate_lens(CommandLink& link, LensValues& values,
                                           std::function<void(const LensSample&)> on_sample);

}  // namespace qv5123
