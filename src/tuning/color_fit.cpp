#include "tuning/color_fit.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tuning/linear_solve.h"

namespace qv5123 {
namespace {

constexpr int kOne = 1024;  // as a code
constexpr int kUnknowns = 6;
/// Keeps codes within what the registers' 13 bits hold.
constexpr int kLargestOffDiagonal = 2000;
/// What a code away from the identity costs: next to nothing, but it settles what the patches leave open.
constexpr double kLaziness = 1e-6;
/// What noise beyond the limit costs, so that the search turns back.
constexpr double kTooNoisy = 1000;

/// The codes beside the diagonal, which follows from them, row by row.
using Codes = std::array<int, kUnknowns>;

/// The columns beside the diagonal of a row.
constexpr std::array<std::size_t, 2> others(std::size_t row) {
  return {row == 0 ? 1u : 0u, row == 2 ? 1u : 2u};
}

Coefficients matrix_of(const Codes& codes) {
  Coefficients matrix{};
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const auto [first, second] = others(r);
    matrix[r][first] = matrix_coefficient(codes[2 * r]);
    matrix[r][second] = matrix_coefficient(codes[2 * r + 1]);
    matrix[r][r] = matrix_coefficient(kOne - codes[2 * r] - codes[2 * r + 1]);
  }
  return matrix;
}

struct Target {
  LinearRgb measured{};
  LinearRgb reference{};
  Lab look;
  double weight = 1;
};

std::vector<Target> targets_of(const ExposedPatches& patches, const ColorFitOptions& options) {
  std::vector<Target> targets;
  double weights = 0;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (!patches[i]) continue;
    const double weight = is_memory_colour(i) ? options.memory_weight : 1;
    targets.push_back({*patches[i], kPatchReferences[i], lab_of(kPatchReferences[i]), weight});
    weights += weight;
  }
  for (Target& target : targets) target.weight /= weights;
  return targets;
}

/// What the square of a coefficient's way from what "Calculate" finds costs, for each part of white that a
/// count is worth. It holds the fit back from following single patches whose counts are few, the noise of
/// which looks large to an eye: with it patches left out come closer as well. Some 16 with white at 205.
constexpr double kPullOfACount = 3200;

/// What is minimised.
class Cost {
 public:
  Cost(std::vector<Target> to_hit, double count, const ColorFitOptions& options, const Codes& calculated)
      : noise_limit(options.noise_limit / 100.0),
        pull(kPullOfACount * count),
        targets(std::move(to_hit)),
        held_to(calculated) {}

  double operator()(const Codes& codes) const {
    const Coefficients matrix = matrix_of(codes);
    double cost = 0;
    for (const Target& target : targets)
      cost += target.weight * ciede2000(target.look, lab_of(through_matrix(matrix, target.measured)));
    for (const auto& row : matrix) cost += kTooNoisy * std::max(0.0, noise_gain(row) - noise_limit);
    for (std::size_t i = 0; i < kUnknowns; ++i) {
      const double away = static_cast<double>(codes[i] - held_to[i]) / kOne;
      cost += kLaziness * std::abs(codes[i]) + pull * away * away;
    }
    return cost;
  }

  const double noise_limit;
  const double pull;
  const std::vector<Target> targets;
  const Codes held_to;
};

/// Off-diagonal coefficients where codes would be too coarse to differentiate.
using Point = std::array<double, kUnknowns>;

LinearRgb through(const Point& point, const LinearRgb& colour) {
  LinearRgb result = colour;
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const auto [first, second] = others(r);
    result[r] += point[2 * r] * (colour[first] - colour[r]) + point[2 * r + 1] * (colour[second] - colour[r]);
  }
  return result;
}

/// The noise gain of a row, and how it grows with the row's two coefficients.
struct Gain {
  double value;
  double by_first;
  double by_second;
};
Gain gain_of(double first, double second) {
  const double own = 1 - first - second;
  const double value = std::hypot(own, first, second);
  return {value, (first - own) / value, (second - own) / value};
}

/// One step of reweighted least squares: each patch's difference counts for its own size, so that the mean of
/// differences is minimised and not that of their squares. Where a row is too noisy it is pushed back.
Point newton_step(const Cost& cost, const Point& point) {
  constexpr double kSmallest = 0.05;  // a difference below it is none
  constexpr double kDelta = 1e-5;
  constexpr double kPush = 300;
  LeastSquares<kUnknowns> squares;
  for (const Target& target : cost.targets) {
    const LinearRgb colour = through(point, target.measured);
    const auto parts = ciede2000_parts(target.look, lab_of(colour));
    const double size = std::hypot(parts[0], parts[1], parts[2]);
    const double weight = std::sqrt(target.weight / std::max(size, kSmallest));
    std::array<std::array<double, kUnknowns>, 3> slopes{};  // of the parts
    for (std::size_t r = 0; r < kMatrixRows; ++r) {
      LinearRgb moved = colour;
      moved[r] += kDelta;
      const auto moved_parts = ciede2000_parts(target.look, lab_of(moved));
      const auto [first, second] = others(r);
      for (std::size_t part = 0; part < 3; ++part) {
        const double slope = weight * (moved_parts[part] - parts[part]) / kDelta;
        slopes[part][2 * r] = slope * (target.measured[first] - target.measured[r]);
        slopes[part][2 * r + 1] = slope * (target.measured[second] - target.measured[r]);
      }
    }
    for (std::size_t part = 0; part < 3; ++part) squares.add(slopes[part], -weight * parts[part]);
  }
  for (std::size_t i = 0; i < kUnknowns; ++i) {
    std::array<double, kUnknowns> lazy{};
    lazy[i] = 0.1;
    squares.add(lazy, 0);
    // The reweighted squares stand for twice the differences.
    std::array<double, kUnknowns> held{};
    held[i] = std::sqrt(2 * cost.pull);
    squares.add(held, held[i] * (static_cast<double>(cost.held_to[i]) / kOne - point[i]));
  }
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const Gain gain = gain_of(point[2 * r], point[2 * r + 1]);
    if (gain.value <= cost.noise_limit) continue;
    std::array<double, kUnknowns> push{};
    push[2 * r] = kPush * gain.by_first;
    push[2 * r + 1] = kPush * gain.by_second;
    squares.add(push, kPush * (cost.noise_limit - gain.value));
  }
  return squares.solve().solution;
}

int code_of(double coefficient) {
  if (!std::isfinite(coefficient)) return 0;
  return static_cast<int>(
      std::lround(std::clamp(coefficient * kOne, -1.0 * kLargestOffDiagonal, 1.0 * kLargestOffDiagonal)));
}

Codes codes_of(const Point& point) {
  Codes codes{};
  for (std::size_t i = 0; i < kUnknowns; ++i) codes[i] = code_of(point[i]);
  return codes;
}

/// Brings rows that are too noisy back to the limit, towards the identity.
Codes quieted(Codes codes, double limit) {
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    int& first = codes[2 * r];
    int& second = codes[2 * r + 1];
    while ((first != 0 || second != 0) && noise_gain(matrix_of(codes)[r]) > limit) {
      first -= first / 50 + (first > 0) - (first < 0);
      second -= second / 50 + (second > 0) - (second < 0);
    }
  }
  return codes;
}

/// The best codes on the way from `start`.
Codes approach(const Cost& cost, const Codes& start) {
  constexpr int kSteps = 12;
  Codes best = quieted(start, cost.noise_limit);
  double least = cost(best);
  Point point{};
  for (std::size_t i = 0; i < kUnknowns; ++i) point[i] = static_cast<double>(start[i]) / kOne;
  for (int step = 0; step < kSteps; ++step) {
    const Point by = newton_step(cost, point);
    for (std::size_t i = 0; i < kUnknowns; ++i)
      point[i] += std::isfinite(by[i]) ? std::clamp(by[i], -0.3, 0.3) : 0;
    const Codes codes = quieted(codes_of(point), cost.noise_limit);
    const double now = cost(codes);
    if (now >= least) continue;
    best = codes;
    least = now;
  }
  return best;
}

/// Walks downhill on the grid of codes, one and two of them at a time, with half the step where none gains.
class Descent {
 public:
  Descent(const Cost& cost, const Codes& start) : cost_(cost), best_(start), least_(cost(start)) {}
  const Codes& best() const { return best_; }

  void run() {
    for (int step = kFirstStep; step >= 1; step /= 2) {
      while (tries_left_ > 0 && explore(step)) {
      }
    }
  }

 private:
  static constexpr int kFirstStep = 8;
  bool shift(std::size_t i, int by, std::size_t j, int and_by) {
    Codes codes = best_;
    codes[i] += by;
    codes[j] += and_by;
    if (std::abs(codes[i]) > kLargestOffDiagonal || std::abs(codes[j]) > kLargestOffDiagonal) return false;
    --tries_left_;
    const double cost = cost_(codes);
    if (!(cost < least_)) return false;
    best_ = codes;
    least_ = cost;
    return true;
  }
  /// Both ends of each code and each pair: along a valley that runs askew no single code gains anything.
  bool explore(int step) {
    bool found = false;
    for (std::size_t i = 0; i < kUnknowns; ++i) {
      found = shift(i, step, i, 0) || shift(i, -step, i, 0) || found;
      for (std::size_t j = i + 1; j < kUnknowns; ++j) {
        for (const int by : {step, -step}) found = shift(i, by, j, step) || shift(i, by, j, -step) || found;
      }
    }
    return found;
  }

  const Cost& cost_;
  Codes best_;
  double least_;
  int tries_left_ = 1200;  // some 20 ms
};

/// Least squares with rows that sum to 1. With `dark` above 0 dark patches count for more, as they do for an
/// eye.
Codes least_squares_start(const std::vector<Target>& targets, double dark) {
  Codes codes{};
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const auto [first, second] = others(r);
    LeastSquares<2> squares;
    for (const Target& target : targets) {
      const double weight = std::pow(std::max(target.reference[1], 0.02), -dark);
      const double own = target.measured[r];
      squares.add({(target.measured[first] - own) * weight, (target.measured[second] - own) * weight},
                  (target.reference[r] - own) * weight);
    }
    const auto result = squares.solve();
    codes[2 * r] = result.determined ? code_of(result.solution[0]) : 0;
    codes[2 * r + 1] = result.determined ? code_of(result.solution[1]) : 0;
  }
  return codes;
}

/// What "Calculate" does: each row by itself, then scaled to sum to 1.
Codes scaled_least_squares(const std::vector<Target>& targets) {
  constexpr double kLeastSum = 0.1;
  Codes codes{};
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    LeastSquares<3> squares;
    for (const Target& target : targets) squares.add(target.measured, target.reference[r]);
    const auto result = squares.solve();
    const auto& raw = result.solution;
    const double sum = raw[0] + raw[1] + raw[2];
    // A row that sums to nothing cannot be scaled.
    if (!result.determined || !(sum > kLeastSum)) continue;
    const auto [first, second] = others(r);
    codes[2 * r] = code_of(raw[first] / sum);
    codes[2 * r + 1] = code_of(raw[second] / sum);
  }
  return codes;
}

Codes halfway(Codes codes) {
  for (int& code : codes) code /= 2;
  return codes;
}

}  // namespace

double noise_gain(const std::array<float, 3>& row) {
  return std::hypot(row[0], row[1], row[2]);
}

Coefficients fit_color_difference(const ExposedPatches& patches, double count,
                                  const ColorFitOptions& options) {
  const std::vector<Target> targets = targets_of(patches, options);
  const Codes plain = least_squares_start(targets, 0);
  const Codes dark = least_squares_start(targets, 0.6);
  const Cost cost(targets, count, options, scaled_least_squares(targets));
  Codes found{};
  for (const Codes& start : {Codes{}, plain, halfway(plain), dark}) {
    const Codes end = approach(cost, start);
    if (cost(end) < cost(found)) found = end;
  }
  Descent descent(cost, found);
  descent.run();
  return matrix_of(descent.best());
}

std::optional<Coefficients> fit_color_difference(const MeasuredColours& measured,
                                                 const ColorFitOptions& options) {
  const std::optional<ExposedPatches> patches = exact_patches(measured);
  if (!patches) return std::nullopt;
  return fit_color_difference(*patches, count_worth(measured), options);
}

}  // namespace qv5123
