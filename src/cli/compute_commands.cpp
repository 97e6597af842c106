#include "base/atomic_file.h"
#include "base/text.h"
#include "cli/command.h"
#include "cli/fit_results.h"
#include "cli/measured_files.h"
#include "cli/numbers.h"
#include "tuning/gamma_curve.h"
#include "tuning/lens_fit.h"
#include "tuning/matrix_diagnosis.h"

namespace qv5123 {
namespace {

struct GammaOptions {
  double gamma = 0;
  double front_level = kDefaultFrontGammaLevel;
  bool itu_709 = false;
};
struct FitOptions {
  std::filesystem::path file;
  int ratio = 100;
  int width = 1920;
  bool color_difference = false;
  ColorFitOptions color;
};

ExitCode compute_gamma(Context& context, const GammaOptions& options) {
  if (options.gamma <= 0) refuse("--gamma: " + shortest(options.gamma) + " is not above 0");
  const GammaCurve curve = end_gamma_curve(options.gamma, options.itu_709, options.front_level);
  std::string text;
  for (const int point : curve) text += std::to_string(point) + "\n";
  context.out.result({{"points", curve}}, text);
  return ExitCode::done;
}

MatrixValues values_of(const MeasuredColours& measured, int ratio, const Coefficients& coefficients) {
  MatrixValues values;
  values.measured = measured;
  values.ratio = ratio;
  values.coefficients = coefficients;
  return values;
}

ExitCode fit_matrix_command(Context& context, const FitOptions& options) {
  const MeasuredColours measured = read_patches(options.file);
  std::optional<MatrixFit> fit = fit_matrix(measured, options.ratio);
  const std::optional<MatrixDiagnosis> found = diagnose_patches(measured, options.ratio);
  if (fit && options.color_difference) fit = {*fit_color_difference(measured, options.color), true};
  const std::optional<PatchReport> report = fit ? patch_report(measured, fit->coefficients) : std::nullopt;
  if (!report || !found)
    refuse(path_text(options.file) + ": one colour of all four greys, lines 20 to 23, is 0");
  if (!fit->solvable) {
    throw Complaint{ExitCode::negative, path_text(options.file) + ": the patches do not determine a matrix"};
  }
  Json json = matrix_json(*fit, *report);
  json.update(diagnosis_json(*fit, *found));
  std::string text = matrix_text(*fit, *report) + diagnosis_text(*fit, *found);
  for (const std::string& warning : matrix_warnings(values_of(measured, options.ratio, fit->coefficients)))
    text += "! " + warning + "\n";
  context.out.result(json, text);
  return ExitCode::done;
}

ExitCode fit_lens_command(Context& context, const FitOptions& options) {
  const std::vector<LensSample> samples = read_samples(options.file, options.width);
  const LensCentre centre = fit_lens_centre(samples, options.width);
  const LensFit fit = fit_lens(samples, centre, options.ratio);
  if (!fit.determined) {
    throw Complaint{ExitCode::negative,
                    path_text(options.file) + ": too few positions to determine the parameters"};
  }
  context.out.result(lens_json(centre, fit), lens_text(centre, fit));
  return ExitCode::done;
}

void declare_gamma(CLI::App& command, GammaOptions& options) {
  add_real(command, "--gamma", options.gamma, "Exponent of the curve")->required();
  command.add_flag("--itu709", options.itu_709, "Follow ITU-R BT.709 with its linear start");
  add_real(command, "--front-level", options.front_level, "Front gamma level (default 16)");
}

void declare_ratio(CLI::App& command, FitOptions& options) {
  add_number(command, "--ratio", options.ratio, 0, 100, "Correction ratio in percent (default 100)");
}

void declare_matrix(CLI::App& command, FitOptions& options) {
  add_path(command, "PATCHES.csv", options.file, "24 lines R,G,B; 0 is not measured")->required();
  declare_ratio(command, options);
  command.add_flag("--color-difference", options.color_difference,
                   "Fit whole codes for the least mean CIEDE2000 instead; the ratio has no say in it");
  add_number(command, "--memory-weight", options.color.memory_weight, kMemoryWeight.lowest,
             kMemoryWeight.highest, "With that: what skin and neutral patches count (default 1)");
  add_number(command, "--noise-limit", options.color.noise_limit, kNoiseLimit.lowest, kNoiseLimit.highest,
             "With that: percent of its noise that a row may make (default 300)");
}

void declare_lens(CLI::App& command, FitOptions& options) {
  add_path(command, "SAMPLES.csv", options.file, "Lines x,R,G,B; colours 1..255")->required();
  declare_ratio(command, options);
  add_number(command, "--width", options.width, 1, 4096, "Pixels in a line (default 1920)");
}

}  // namespace

void add_compute_commands(CLI::App& app, Context& context) {
  CLI::App* gamma = add_group(app, "gamma", "Gamma curves");
  add_command<GammaOptions>(*gamma, context, "compute", "Print the 22 points of an end gamma curve",
                            declare_gamma, compute_gamma);
  CLI::App* matrix = add_group(app, "matrix", "The colour correction matrix");
  add_command<FitOptions>(*matrix, context, "fit",
                          "Fit the matrix to measured patches; print coefficients, codes, and colour "
                          "differences before and after",
                          declare_matrix, fit_matrix_command);
  add_matrix_measure(*matrix, context);
  CLI::App* lens = add_group(app, "lsc", "Lens shading");
  add_command<FitOptions>(*lens, context, "fit",
                          "Fit the parameters to samples along a line; print centre, peaks, a, b and the "
                          "six parameters",
                          declare_lens, fit_lens_command);
  add_lens_measure(*lens, context);
}

}  // namespace qv5123
