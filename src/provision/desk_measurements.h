#pragma once

#include <functional>
#include <optional>
#include <string>

#include "provision/unattended.h"
#include "tuning/awb_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"
#include "tuning/patch_report.h"

/// The pages' own measurements from their first click to their last, for who has no mouse.
namespace qv5123 {

/// What came of a sweep along the line.
struct LensMeasurement {
  std::string trouble;  ///< in words; empty when all went well, and then the rest holds
  /// What is left of the fall-off once the chip corrects it, by colour: highest less lowest level along the
  /// line, in percent of the mean.
  std::array<double, 3> ripple{};
};
/// Switches the picker on, sweeps, fits and sends the parameters. The desk then holds what was measured.
Task<LensMeasurement> measure_lens(UnattendedHost& host, LensDesk& desk);

/// Where the 24 patches are, in pixels of the picture.
struct ChartPlace {
  PickerPosition first{360, 180};
  int step = 240;  ///< from a patch to the next, both ways
};

struct MatrixMeasurement {
  std::string trouble;
  std::optional<PatchReport> report;  ///< with the matrix of the fit, where one was asked for
};
/// Switches the picker on, measures the patches one after the other, and switches it off. With `fit`, makes
/// the matrix of what was measured the one of the desk's light source and mode, and sends its rows.
Task<MatrixMeasurement> measure_matrix(UnattendedHost& host, MatrixDesk& desk, ChartPlace place, bool fit);

/// The mean that the white balance's own picker reads: the desk's first patch. What is wrong, in words.
Task<std::string> measure_awb(UnattendedHost& host, AwbDesk& desk);

}  // namespace qv5123
