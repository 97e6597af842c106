#include "tuning/matrix_fit.h"

#include <cmath>
#include <limits>

#include "tuning/linear_solve.h"

namespace qv5123 {
namespace {

using Row = std::array<double, 3>;

Row grey_sums(const MeasuredColours& measured) {
  Row sums{};
  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) {
    for (std::size_t c = 0; c < 3; ++c) sums[c] += measured[i][c];
  }
  return sums;
}

LeastSquaresResult<3> fit_row(const MeasuredColours& measured, const BalancedColours& balanced,
                              std::size_t row) {
  LeastSquares<3> squares;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (is_measured(measured[i])) squares.add(balanced[i], kPatchReferences[i][row]);
  }
  return squares.solve();
}

/// To single precision, where what is too large becomes infinite.
float single(double value) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const bool fits = !(std::abs(value) > std::numeric_limits<float>::max());
  return static_cast<float>(fits ? value : std::copysign(kInfinity, value));
}

/// The raw row scaled to sum to 1, `strength` (0..1) of the way from the identity.
std::array<float, 3> finished_row(const Row& raw, std::size_t row, double strength) {
  const double sum = raw[0] + raw[1] + raw[2];
  std::array<float, 3> finished{};
  for (std::size_t j = 0; j < 3; ++j) {
    const double identity = j == row ? 1 : 0;
    // Without this, 0 % of a row that is no number would not be the identity.
    const double share = strength == 0 ? 0 : (raw[j] / sum - identity) * strength;
    finished[j] = single(share + identity);
  }
  return finished;
}

bool all_finite(const std::array<float, 3>& row) {
  return std::isfinite(row[0]) && std::isfinite(row[1]) && std::isfinite(row[2]);
}

}  // namespace

std::optional<BalancedColours> balance_patches_exactly(const MeasuredColours& measured) {
  const Row sums = grey_sums(measured);
  if (sums[0] == 0 || sums[1] == 0 || sums[2] == 0) return std::nullopt;
  BalancedColours balanced{};
  for (std::size_t i = 0; i < kPatches; ++i) {
    balanced[i] = {measured[i][0] * (sums[1] / sums[0]), static_cast<double>(measured[i][1]),
                   measured[i][2] * (sums[1] / sums[2])};
  }
  return balanced;
}

std::optional<BalancedColours> balance_patches(const MeasuredColours& measured) {
  std::optional<BalancedColours> balanced = balance_patches_exactly(measured);
  if (!balanced) return std::nullopt;
  for (auto& patch : *balanced)
    for (double& counts : patch) counts = std::trunc(counts);
  return balanced;
}

bool is_measured(const MeasuredColour& patch) {
  return patch[0] != 0 && patch[1] != 0 && patch[2] != 0;
}

MatrixFit fit_balanced(const MeasuredColours& measured, const BalancedColours& balanced, int ratio) {
  MatrixFit fit;
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const auto [raw, determined] = fit_row(measured, balanced, r);
    fit.coefficients[r] = finished_row(raw, r, ratio / 100.0);
    // At 0 % the identity is the answer whatever was measured.
    fit.solvable = fit.solvable && (determined || ratio == 0) && all_finite(fit.coefficients[r]);
  }
  return fit;
}

std::optional<MatrixFit> fit_matrix(const MeasuredColours& measured, int ratio) {
  const std::optional<BalancedColours> balanced = balance_patches(measured);
  if (!balanced) return std::nullopt;
  return fit_balanced(measured, *balanced, ratio);
}

MatrixResult calculate_matrix(MatrixValues& values) {
  const std::optional<MatrixFit> fit = fit_matrix(values.measured, values.ratio);
  if (!fit) return MatrixResult::no_grey;
  values.coefficients = fit->coefficients;
  store_matrix(values);
  return fit->solvable ? MatrixResult::ok : MatrixResult::unsolvable;
}

}  // namespace qv5123
