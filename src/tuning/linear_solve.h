#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace qv5123 {

template <std::size_t N>
struct LeastSquaresResult {
  std::array<double, N> solution{};  ///< not finite where a pivot was 0
  /// False when the samples do not determine the solution (a pivot that is 0, or nothing but rounding left
  /// of it); `solution` is then whatever the elimination came to.
  bool determined = true;
};

/// Least squares without a constant term: gathers the normal equations of `target = solution * input` over
/// the samples and solves them.
template <std::size_t N>
class LeastSquares {
 public:
  void add(const std::array<double, N>& input, double target) {
    for (std::size_t i = 0; i < N; ++i) {
      for (std::size_t j = 0; j < N; ++j) rows_[i][j] += input[i] * input[j];
      rows_[i][N] += input[i] * target;
    }
  }

  /// Gauss-Jordan elimination without pivoting: the normal matrix is positive definite wherever the
  /// solution is determined, and then needs none.
  LeastSquaresResult<N> solve() const {
    Rows rows = rows_;
    LeastSquaresResult<N> result;
    for (std::size_t i = 0; i < N; ++i) {
      if (!(std::abs(rows[i][i]) > kNegligible * std::abs(rows_[i][i]))) result.determined = false;
      eliminate(rows, i);
    }
    for (std::size_t i = 0; i < N; ++i) {
      result.solution[i] = rows[i][N];
      if (!std::isfinite(rows[i][N])) result.determined = false;
    }
    return result;
  }

 private:
  using Rows = std::array<std::array<double, N + 1>, N>;
  /// Share of a diagonal element below which what elimination leaves of it is rounding.
  static constexpr double kNegligible = 1e-13;

  static void eliminate(Rows& rows, std::size_t pivot) {
    const double diagonal = rows[pivot][pivot];
    for (double& element : rows[pivot]) element /= diagonal;
    for (std::size_t i = 0; i < N; ++i) {
      if (i == pivot) continue;
      const double factor = rows[i][pivot];
      for (std::size_t j = 0; j <= N; ++j) rows[i][j] -= factor * rows[pivot][j];
    }
  }

  Rows rows_{};
};

}  // namespace qv5123
