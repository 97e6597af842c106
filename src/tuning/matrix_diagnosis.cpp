#include "tuning/matrix_diagnosis.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/text.h"

namespace qv5123 {
namespace {

using Symmetric = std::array<std::array<double, 3>, 3>;

/// Turns rows and columns `p` and `q` so that the element between them becomes 0 (Jacobi).
void rotate(Symmetric& m, std::size_t p, std::size_t q) {
  if (m[p][q] == 0) return;
  const double angle = 0.5 * std::atan2(2 * m[p][q], m[q][q] - m[p][p]);
  const double c = std::cos(angle), s = std::sin(angle);
  for (std::size_t k = 0; k < 3; ++k) {
    const double a = m[k][p], b = m[k][q];
    m[k][p] = c * a - s * b;
    m[k][q] = s * a + c * b;
  }
  for (std::size_t k = 0; k < 3; ++k) {
    const double a = m[p][k], b = m[q][k];
    m[p][k] = c * a - s * b;
    m[q][k] = s * a + c * b;
  }
}

double condition_of(const ExposedPatches& patches) {
  Symmetric normal{};
  for (const auto& patch : patches) {
    for (std::size_t i = 0; i < 3 && patch; ++i)
      for (std::size_t j = 0; j < 3; ++j) normal[i][j] += (*patch)[i] * (*patch)[j];
  }
  constexpr int kSweeps = 10;
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    rotate(normal, 0, 1);
    rotate(normal, 0, 2);
    rotate(normal, 1, 2);
  }
  const auto [least, most] = std::minmax({normal[0][0], normal[1][1], normal[2][2]});
  if (least <= most * 1e-12) return std::numeric_limits<double>::infinity();
  return std::sqrt(most / least);
}

double largest_change(const Coefficients& one, const Coefficients& other) {
  double largest = 0;
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    for (std::size_t j = 0; j < 3; ++j)
      largest = std::max(largest, static_cast<double>(std::abs(one[r][j] - other[r][j])));
  }
  return largest;
}

void warn_of_codes(const Coefficients& matrix, std::vector<std::string>& warnings) {
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    for (std::size_t j = 0; j < 3; ++j) {
      const int code = matrix_code(matrix[r][j]);
      if (kMatrixCode13.holds(code)) continue;
      warnings.push_back(std::string(kMatrixCodeNames[r][j]) + " is " + std::to_string(code) +
                         ": 13 bits hold -4096 to 4095, so it wraps.");
    }
    if (noise_gain(matrix[r]) <= kHighestNoiseGain) continue;
    warnings.push_back(std::string(kMatrixRowNames[r]) + " makes noise " + fixed(noise_gain(matrix[r]), 1) +
                       " times as large.");
  }
}

void warn_of_patches(const MatrixDiagnosis& found, std::vector<std::string>& warnings) {
  if (found.coloured == 0) {
    warnings.push_back("Only grays were measured: they say nothing of colors.");
  } else if (found.patches < kFewestPatches) {
    warnings.push_back("Only " + std::to_string(found.patches) + " patches were measured; from " +
                       std::to_string(kFewestPatches) + " on their errors even out.");
  }
  if (found.coloured > 0 && found.condition > kHighestCondition) {
    warnings.push_back("The patches are nearly of one color: errors come out up to " +
                       (std::isfinite(found.condition) ? fixed(found.condition, 0) + " times as large."
                                                       : std::string("any size.")));
  }
}

void warn_of_clipping(const MeasuredColours& measured, std::vector<std::string>& warnings) {
  std::string clipped;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (*std::ranges::max_element(measured[i]) >= static_cast<std::uint32_t>(kClippedCounts))
      clipped += (clipped.empty() ? "" : ", ") + patch_name(i);
  }
  if (!clipped.empty()) warnings.push_back("Clipped, over 250 counts: " + clipped + ".");
}

}  // namespace

std::optional<MatrixDiagnosis> diagnose_patches(const MeasuredColours& measured, int ratio) {
  const std::optional<BalancedColours> balanced = balance_patches(measured);
  const std::optional<ExposedPatches> exposed = exposed_patches(measured);
  if (!balanced || !exposed) return std::nullopt;
  MatrixDiagnosis found;
  found.condition = condition_of(*exposed);
  const Coefficients whole = fit_balanced(measured, *balanced, ratio).coefficients;
  std::vector<double> differences;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (!(*exposed)[i]) continue;
    ++found.patches;
    found.coloured += is_grey(i) ? 0 : 1;
    MeasuredColours others = measured;
    others[i] = {};
    const Coefficients without = fit_balanced(others, *balanced, ratio).coefficients;
    found.pulls.push_back({i, largest_change(whole, without)});
    const LinearRgb corrected = through_matrix(as_registers_hold(without), *(*exposed)[i]);
    differences.push_back(ciede2000(lab_of(kPatchReferences[i]), lab_of(corrected)));
  }
  found.left_out = summary_of(std::move(differences));
  std::ranges::stable_sort(found.pulls, std::greater{}, &PatchPull::change);
  return found;
}

std::vector<std::string> matrix_warnings(const MatrixValues& values) {
  std::vector<std::string> warnings;
  warn_of_codes(values.coefficients, warnings);
  const auto report = patch_report(values.measured, values.coefficients);
  const auto found = diagnose_patches(values.measured, values.ratio);
  if (!report || !found) return warnings;
  warn_of_patches(*found, warnings);
  warn_of_clipping(values.measured, warnings);
  if (report->after.mean > report->before.mean) {
    warnings.push_back("The mean color difference grows from " + fixed(report->before.mean, 1) + " to " +
                       fixed(report->after.mean, 1) + ".");
  }
  return warnings;
}

}  // namespace qv5123
