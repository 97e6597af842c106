#pragma once

#include <optional>
#include <vector>

#include "tuning/matrix_fit.h"

/// How close the patches come to their references, before and after the matrix.
namespace qv5123 {

/// One measured patch. The colours share the scale of the reference table, taken as linear sRGB against D65.
struct PatchMatch {
  LinearRgb reference{};
  LinearRgb measured{};   ///< white balanced and exposed like the reference
  LinearRgb corrected{};  ///< that, through the matrix
  double before = 0;      ///< CIEDE2000 of measured against reference
  double after = 0;       ///< CIEDE2000 of corrected against reference
};

struct DifferenceSummary {
  double mean = 0;
  double median = 0;
  double worst = 0;
};

struct PatchReport {
  /// By patch; empty where a component was not measured.
  std::array<std::optional<PatchMatch>, kPatches> patches;
  DifferenceSummary before;
  DifferenceSummary after;
};

/// What a count of green is worth on the scale of the references, by the four greys: the more, the fewer
/// counts there are. Infinite when no grey has been measured.
double count_worth(const MeasuredColours& measured);

/// The measured patches, white balanced and exposed like the references; empty where a component was not
/// measured. The exposure is the one that brings the green of the four greys, summed, to that of their
/// references. Nothing when no grey has been measured.
using ExposedPatches = std::array<std::optional<LinearRgb>, kPatches>;
std::optional<ExposedPatches> exposed_patches(const MeasuredColours& measured);
/// The same without cutting balanced counts to whole ones, as the chip balances.
std::optional<ExposedPatches> exact_patches(const MeasuredColours& measured);

LinearRgb through_matrix(const Coefficients& matrix, const LinearRgb& colour);

DifferenceSummary summary_of(std::vector<double> differences);

/// The report on `measured` with the matrix as the registers hold it, after rounding. Nothing when no
/// grey has been measured.
std::optional<PatchReport> patch_report(const MeasuredColours& measured, const Coefficients& coefficients);

}  // namespace qv5123
