#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tuning/lens_checks.h"
#include "tuning/matrix.h"

namespace qv5123 {

// Files of measurements: numbers between commas. What is wrong with one is a Complaint that names the line.

/// 24 lines R,G,B, 0..65535; 0 is not measured.
MeasuredColours read_patches(const std::filesystem::path& path);
std::string patches_text(const MeasuredColours& measured);
/// Lines x,R,G,B: x below `width`, colours 1..255.
std::vector<LensSample> read_samples(const std::filesystem::path& path, int width);
std::string samples_text(const std::vector<LensSample>& samples);
/// 45 lines R,G,B, 0..255, in the order of field_positions().
LensField read_field(const std::filesystem::path& path);
std::string field_text(const LensField& field);

}  // namespace qv5123
