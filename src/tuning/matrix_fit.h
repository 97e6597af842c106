#pragma once

#include "tuning/matrix.h"

/// From the measured patches to the colour correction matrix.
namespace qv5123 {

/// Counts of the picker, white balanced.
using BalancedColours = std::array<std::array<double, 3>, kPatches>;

/// Scales red and blue of all patches so that the four greys together come out neutral, truncating. Nothing
/// when one colour of all four is 0.
std::optional<BalancedColours> balance_patches(const MeasuredColours& measured);

/// The same without truncating.
std::optional<BalancedColours> balance_patches_exactly(const MeasuredColours& measured);

/// True when no component of the patch is 0; only these count in the fit.
bool is_measured(const MeasuredColour& patch);

struct MatrixFit {
  Coefficients coefficients{};
  /// False when the patches do not determine a matrix (at 0 % nothing has to be determined), or a row of it
  /// cannot be made to sum to 1; the coefficients are then whatever the method came to and may be no numbers.
  bool solvable = true;
};

/// The matrix that takes the balanced patches closest to their references, row by row by least squares; each
/// row scaled to sum to 1, so that neutral stays neutral; then moved towards the identity: `ratio` percent
/// of the way from there. Nothing when no grey has been measured.
std::optional<MatrixFit> fit_matrix(const MeasuredColours& measured, int ratio);

/// The same for patches that are balanced already. Only those whose `measured` has no 0 count, so that one
/// can be left out by itself.
MatrixFit fit_balanced(const MeasuredColours& measured, const BalancedColours& balanced, int ratio);

enum class MatrixResult {
  ok,
  no_grey,     ///< nothing was changed
  unsolvable,  ///< computed all the same, the results that are no numbers saturated
};

/// "Calculate": fits, makes the result the current matrix and stores it in the tables.
MatrixResult calculate_matrix(MatrixValues& values);

}  // namespace qv5123
