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

/// What becomes of a measurement that the page would ask about: readings that are doubtful, or parameters
/// that may amplify errors.
enum class Doubtful { refuse, send };

/// What came of a sweep along the line.
struct LensMeasurement {
  std::string trouble;  ///< in words; empty when all went well
  /// Largest over smallest level along the line less 1, of the colour where it is worst, in percent: as
  /// measured, and once the chip corrects it. 0 where the sweep did not get to its end.
  double ripple_before = 0;
  double ripple = 0;
};
/// Switches the picker on, sweeps, fits and sends the parameters. The desk then holds what was measured.
Task<LensMeasurement> measure_lens(UnattendedHost& host, LensDesk& desk, Doubtful doubtful);

/// "Check field": what the whole picture is like with the correction that the chip has; desk.picture() then
/// has it. What is wrong, in words.
Task<std::string> measure_field(UnattendedHost& host, LensDesk& desk);

/// Where the patches at the chart's corners are, in the order of kCornerPatches.
using ChartPlace = std::array<PickerPosition, kCornerPatches.size()>;
/// The usual distance of the patches, and where the first then is, in pixels.
inline constexpr int kPatchStep = 240;
inline constexpr PickerPosition kFirstPatch{360, 180};
/// Of a chart that stands straight, `step` from a patch to the next, both ways. Nothing where it goes beyond
/// the picture.
std::optional<ChartPlace> straight_chart(PickerPosition first, int step);
/// Whether the four go round a chart.
bool is_chart(const ChartPlace& place);

struct MatrixMeasurement {
  std::string trouble;
  std::optional<PatchReport> report;  ///< with the matrix of the fit, where one was asked for
};
/// Switches the picker on, measures the whole chart, and switches it off. With `fit`, makes the matrix of
/// what was measured the one of the desk's light source and mode, and sends its rows.
Task<MatrixMeasurement> measure_matrix(UnattendedHost& host, MatrixDesk& desk, ChartPlace place, bool fit,
                                       Doubtful doubtful);

/// The mean that the white balance's own picker reads: the desk's first patch. What is wrong, in words.
Task<std::string> measure_awb(UnattendedHost& host, AwbDesk& desk);

}  // namespace qv5123
