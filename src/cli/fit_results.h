#pragma once

#include <string>

#include "cli/output.h"
#include "tuning/lens_fit.h"
#include "tuning/matrix_diagnosis.h"
#include "tuning/patch_report.h"

namespace qv5123 {

// What a fit came to, as it is printed.

/// Coefficients, codes, and the colour differences of every patch.
Json matrix_json(const MatrixFit& fit, const PatchReport& report);
std::string matrix_text(const MatrixFit& fit, const PatchReport& report);

/// How far the fit can be trusted: condition, the patches left out, and the noise that the rows make.
Json diagnosis_json(const MatrixFit& fit, const MatrixDiagnosis& found);
std::string diagnosis_text(const MatrixFit& fit, const MatrixDiagnosis& found);

/// Centre, peaks, a, b and the six parameters.
Json lens_json(const LensCentre& centre, const LensFit& fit);
std::string lens_text(const LensCentre& centre, const LensFit& fit);

}  // namespace qv5123
