#include "tuning/patch_report.h"

#include <algorithm>
#include <vector>

namespace qv5123 {
namespace {

/// What a count of the balanced patches is worth on the scale of the references.
double exposure(const BalancedColours& balanced) {
  double counts = 0;
  double reference = 0;
  for (std::size_t i = kFirstGrey; i <= kLastGrey; ++i) {
    counts += balanced[i][1];
    reference += kPatchReferences[i][1];
  }
  return reference / counts;
}

LinearRgb through(const Coefficients& matrix, const LinearRgb& colour) {
  LinearRgb result{};
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    for (std::size_t j = 0; j < 3; ++j) result[r] += matrix[r][j] * colour[j];
  }
  return result;
}

PatchMatch match(std::size_t patch, const LinearRgb& measured, const Coefficients& matrix) {
  PatchMatch match{kPatchReferences[patch], measured, through(matrix, measured)};
  match.before = ciede2000(lab_of(match.reference), lab_of(match.measured));
  match.after = ciede2000(lab_of(match.reference), lab_of(match.corrected));
  return match;
}

DifferenceSummary summary(std::vector<double> differences) {
  if (differences.empty()) return {};
  std::sort(differences.begin(), differences.end());
  double sum = 0;
  for (double difference : differences) sum += difference;
  const std::size_t count = differences.size();
  const double median = (differences[(count - 1) / 2] + differences[count / 2]) / 2;
  return {sum / static_cast<double>(count), median, differences.back()};
}

DifferenceSummary summary_of(const PatchReport& report, double PatchMatch::*difference) {
  std::vector<double> differences;
  for (const auto& patch : report.patches) {
    if (patch) differences.push_back((*patch).*difference);
  }
  return summary(std::move(differences));
}

}  // namespace

std::optional<PatchReport> patch_report(const MeasuredColours& measured, const Coefficients& coefficients) {
  const std::optional<BalancedColours> balanced = balance_patches(measured);
  if (!balanced) return std::nullopt;
  const double scale = exposure(*balanced);
  const Coefficients matrix = as_registers_hold(coefficients);
  PatchReport report;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (!is_measured(measured[i])) continue;
    const auto& counts = (*balanced)[i];
    report.patches[i] = match(i, {counts[0] * scale, counts[1] * scale, counts[2] * scale}, matrix);
  }
  report.before = summary_of(report, &PatchMatch::before);
  report.after = summary_of(report, &PatchMatch::after);
  return report;
}

}  // namespace qv5123
