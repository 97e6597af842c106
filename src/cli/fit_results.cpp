#include "cli/fit_results.h"

#include "cli/numbers.h"

namespace qv5123 {
namespace {

Json json_of(const DifferenceSummary& summary) {
  return {{"mean", summary.mean}, {"median", summary.median}, {"worst", summary.worst}};
}

std::string summary_text(const std::string& when, const DifferenceSummary& summary) {
  return "CIEDE2000 " + when + ": mean " + fixed(summary.mean, 2) + ", median " + fixed(summary.median, 2) +
         ", worst " + fixed(summary.worst, 2) + "\n";
}

}  // namespace

Json matrix_json(const MatrixFit& fit, const PatchReport& report) {
  Json codes = Json::array();
  for (const auto& row : fit.coefficients) {
    codes.push_back({matrix_code(row[0]), matrix_code(row[1]), matrix_code(row[2])});
  }
  Json patches = Json::array();
  for (std::size_t i = 0; i < kPatches; ++i) {
    const auto& match = report.patches[i];
    Json patch = {{"name", kPatchCaptions[i]}};
    if (match) patch.update({{"before", match->before}, {"after", match->after}});
    patches.push_back(patch);
  }
  return {{"coefficients", fit.coefficients},
          {"codes", codes},
          {"patches", patches},
          {"before", json_of(report.before)},
          {"after", json_of(report.after)}};
}

std::string matrix_text(const MatrixFit& fit, const PatchReport& report) {
  std::string text;
  for (std::size_t r = 0; r < kMatrixRows; ++r) {
    const auto& row = fit.coefficients[r];
    text += std::string(kColourNames[r]) + ":";
    for (const float coefficient : row) text += " " + fixed(coefficient, 6);
    for (const float coefficient : row) text += " " + matrix_code_text(coefficient);
    text += "\n";
  }
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (const auto& match = report.patches[i]) {
      text += std::string(kPatchCaptions[i]) + ": " + fixed(match->before, 2) + " -> " +
              fixed(match->after, 2) + "\n";
    }
  }
  return text + summary_text("before", report.before) + summary_text("after", report.after);
}

Json diagnosis_json(const MatrixFit& fit, const MatrixDiagnosis& found) {
  Json pulls = Json::array();
  for (const PatchPull& pull : found.pulls)
    pulls.push_back({{"name", kPatchCaptions[pull.patch]}, {"change", pull.change}});
  Json gains = Json::array();
  for (const auto& row : fit.coefficients) gains.push_back(noise_gain(row));
  return {{"condition", found.condition},
          {"left_out", json_of(found.left_out)},
          {"noise_gain", gains},
          {"pulls", pulls}};
}

std::string diagnosis_text(const MatrixFit& fit, const MatrixDiagnosis& found) {
  std::string text = summary_text("of patches left out", found.left_out);
  text += "condition " + fixed(found.condition, 1) + ", noise gain";
  for (const auto& row : fit.coefficients) text += " " + fixed(noise_gain(row), 2);
  return text + "\n";
}

Json lens_json(const LensCentre& centre, const LensFit& fit) {
  return {{"centre", centre.x}, {"peak", centre.peak},          {"peak_x", centre.peak_x},     {"a", fit.a},
          {"b", fit.b},         {"parameter1", fit.parameter1}, {"parameter2", fit.parameter2}};
}

std::string lens_text(const LensCentre& centre, const LensFit& fit) {
  std::string text = "centre: " + std::to_string(centre.x) + "\n";
  for (std::size_t c = 0; c < 3; ++c) {
    text += std::string(kColourNames[c]) + ": peak " + std::to_string(centre.peak[c]) + " at " +
            std::to_string(centre.peak_x[c]) + ", a " + fixed(fit.a[c], 6) + ", b " + fixed(fit.b[c], 6) +
            ", parameter1 " + std::to_string(fit.parameter1[c]) + ", parameter2 " +
            std::to_string(fit.parameter2[c]) + "\n";
  }
  return text;
}

}  // namespace qv5123
