#include "tuning/patch_report.h"

#include <algorithm>
#include <vector>

namespace qv5123 {
namespace {

std::optional<ExposedPatches> exposed(const MeasuredColours& measured,
                                      const std::optional<BalancedColours>& balanced) {
  if (!balanced) return std::nullopt;
  const double scale = count_worth(measured);
  ExposedPatches patches;
  for (std::size_t i = 0; i < kPatches; ++i) {
    const auto& counts = (*balanced)[i];
    if (is_measured(measured[i])) patches[i] = {counts[0] * scale, counts[1] * scale, counts[2] * scale};
  }
  return patches;
}

PatchMatch match(std::size_t patch, const LinearRgb& measured, const Coefficients& matrix) {
  PatchMatch match{kPatchReferences[patch], measured, through_matrix(matrix, measured)};
  match.before = ciede2000(lab_of(match.reference), lab_of(match.measured));
  match.after = ciede2000(lab_of(match.reference), lab_of(match.corrected));
  return match;
}

DifferenceSummary summary_by(const PatchReport& report, double PatchMatch::*difference) {
  std::vector<double> differences;
  for (const auto& patch : report.patches) {
    if (patch) differences.push_back((*patch).*difference);
  }
  return summary_of(std::move(differences));
}

}  // namespace

/// Balancing leaves green as it is.
double count_worth(const MeasuredColours& measured) {
  double counts = 0;
  double reference = 0;
  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) {
    counts += measured[i][1];
    reference += kPatchReferences[i][1];
  }
  return reference / counts;
}

std::optional<ExposedPatches> exposed_patches(const MeasuredColours& measured) {
  return exposed(measured, balance_patches(measured));
}

std::optional<ExposedPatches> exact_patches(const MeasuredColours& measured) {
  return exposed(measured, balance_patches_exactly(measured));
}

LinearRgb through_matrix(const Coefficients& matrix, const LinearRgb& colour) {
  LinearRgb result{};
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    for (std::size_t j = 0; j < 3; ++j) result[r] += matrix[r][j] * colour[j];
  }
  return result;
}

DifferenceSummary summary_of(std::vector<double> differences) {
  if (differences.empty()) return {};
  std::sort(differences.begin(), differences.end());
  double sum = 0;
  for (double difference : differences) sum += difference;
  const std::size_t count = differences.size();
  const double median = (differences[(count - 1) / 2] + differences[count / 2]) / 2;
  return {sum / static_cast<double>(count), median, differences.back()};
}

std::optional<PatchReport> patch_report(const MeasuredColours& measured, const Coefficients& coefficients) {
  const std::optional<ExposedPatches> patches = exposed_patches(measured);
  if (!patches) return std::nullopt;
  const Coefficients matrix = as_registers_hold(coefficients);
  PatchReport report;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (const auto& patch = (*patches)[i]) report.patches[i] = match(i, *patch, matrix);
  }
  report.before = summary_by(report, &PatchMatch::before);
  report.after = summary_by(report, &PatchMatch::after);
  return report;
}

}  // namespace qv5123
