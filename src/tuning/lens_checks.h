#pragma once

#include <string>
#include <vector>

#include "tuning/lens_fit.h"

/// Whether what a lens calibration fitted is worth sending, and what the chip's picture is like with it.
namespace qv5123 {

/// How far the levels along the line are from even, in percent: largest over smallest less 1, of the colour
/// where it is worst. Without parameters as measured, else as the chip would correct them.
double lens_line_ripple(const LensCalibration& calibration);
double lens_line_ripple(const LensCalibration& calibration, const PerColour& parameter1,
                        const PerColour& parameter2);

/// True where the second parameter of a colour came out below 0, which the chip cannot do: it was made 0.
bool second_parameter_clamped(const LensCalibration& calibration);

/// What becomes of a calibration that is doubtful.
enum class LensDecision { send, send_first_alone, keep_old };

/// Why the readings or what was fitted to them are doubtful, a sentence each; empty when they are not.
std::vector<std::string> lens_warnings(const LensCalibration& calibration);

/// Where "Check field" measures: 9 across, 5 down, row by row.
inline constexpr int kFieldColumns = 9;
inline constexpr int kFieldRows = 5;
inline constexpr std::size_t kFieldPlaces = static_cast<std::size_t>(kFieldColumns) * kFieldRows;
std::vector<PickerPosition> field_positions(int screen_index);
/// What the picker said there, in their order.
using LensField = std::vector<PerColour>;
/// Largest over smallest less 1, in percent, for each colour; 0 for an empty field. A colour that reads 0
/// somewhere counts as 1 there.
std::array<double, 3> field_ripple(const LensField& field);
/// Why the readings say nothing of a colour's ripple.
enum class FieldDoubt { none, dark, clipped };
FieldDoubt field_doubt(const LensField& field, std::size_t colour);
/// The same in words, a sentence to a colour; empty where there is none.
std::vector<std::string> field_warnings(const LensField& field);
/// Whether all places were measured and none of the colours is in doubt.
bool field_tells(const LensField& field);

}  // namespace qv5123
