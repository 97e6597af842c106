#pragma once

#include <vector>

#include "tuning/color_fit.h"
#include "tuning/matrix_fit.h"

/// Both fits of the matrix page, held against the patches that they were made of and against those left out.
namespace qv5123::test {

/// `measured` gives the white balance, `patches` are those to fit to.
using PatchFit = Coefficients (*)(const MeasuredColours& measured, const ExposedPatches& patches);

inline Coefficients calculated(const MeasuredColours& measured, const ExposedPatches& patches) {
  MeasuredColours used = measured;
  for (std::size_t i = 0; i < kPatches; ++i)
    if (!patches[i]) used[i] = {};
  return fit_balanced(used, *balance_patches(measured), 100).coefficients;
}

inline Coefficients color_difference(const MeasuredColours& measured, const ExposedPatches& patches) {
  return fit_color_difference(patches, count_worth(measured), {});
}

/// CIEDE2000 with the matrix as the registers hold it.
inline double patch_difference(std::size_t patch, const LinearRgb& measured, const Coefficients& matrix) {
  return ciede2000(lab_of(kPatchReferences[patch]),
                   lab_of(through_matrix(as_registers_hold(matrix), measured)));
}

inline double mean_difference(const ExposedPatches& patches, const Coefficients& matrix) {
  std::vector<double> differences;
  for (std::size_t i = 0; i < kPatches; ++i)
    if (patches[i]) differences.push_back(patch_difference(i, *patches[i], matrix));
  return summary_of(std::move(differences)).mean;
}

/// Of each patch with what was fitted to all others.
inline double mean_left_out(const MeasuredColours& measured, PatchFit fit) {
  const ExposedPatches patches = *exact_patches(measured);
  std::vector<double> differences;
  for (std::size_t i = 0; i < kPatches; ++i) {
    if (!patches[i]) continue;
    ExposedPatches others = patches;
    others[i].reset();
    differences.push_back(patch_difference(i, *patches[i], fit(measured, others)));
  }
  return summary_of(std::move(differences)).mean;
}

}  // namespace qv5123::test
