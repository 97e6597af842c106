#pragma once

#include <optional>

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

/// The report on `measured` with the matrix as the registers hold it, after rounding. The exposure is the
/// one that brings the green of the four greys, summed, to that of their references. Nothing when no grey
/// has been measured.
std::optional<PatchReport> patch_report(const MeasuredColours& measured, const Coefficients& coefficients);

}  // namespace qv5123
