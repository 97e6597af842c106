#pragma once

#include <string>
#include <vector>

#include "tuning/color_fit.h"

/// What is to be known of a matrix and of the patches that it was fitted to before the chip gets it.
namespace qv5123 {

/// A patch, and by how much the largest change of a coefficient comes without it.
struct PatchPull {
  std::size_t patch = 0;
  double change = 0;
};

struct MatrixDiagnosis {
  std::size_t patches = 0;   ///< measured
  std::size_t coloured = 0;  ///< and not grey
  /// The largest over the smallest stretch of the balanced patches: by how much errors of the readings may
  /// come out larger in the coefficients. Infinite where the patches do not determine a matrix.
  double condition = 0;
  /// CIEDE2000 of each patch with the fit of "Calculate" to all others: what a chart's own patches cannot
  /// flatter. The white balance is that of all greys.
  DifferenceSummary left_out;
  std::vector<PatchPull> pulls;  ///< all measured patches, the strongest first
};
/// Nothing when no grey has been measured.
std::optional<MatrixDiagnosis> diagnose_patches(const MeasuredColours& measured, int ratio);

/// Beyond these a matrix is not sent without a question.
inline constexpr double kHighestCondition = 60;
inline constexpr std::size_t kFewestPatches = 12;
inline constexpr double kHighestNoiseGain = 3;
/// The codes that 13 bits hold.
inline constexpr Range kMatrixCode13{-4096, 4095};

/// What may amplify errors in the current matrix and the patches behind it, a sentence each; empty when
/// nothing does. Where no patch was measured only the codes are looked at.
std::vector<std::string> matrix_warnings(const MatrixValues& values);

}  // namespace qv5123
