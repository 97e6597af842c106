#include <utility>
#include <vector>

#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/fit_results.h"
#include "cli/measured_files.h"
#include "cli/numbers.h"
#include "provision/desk_measurements.h"

namespace qv5123 {
namespace {

struct MatrixOptions {
  std::string first;
  int step = kPatchStep;
  std::vector<std::string> corners;
  bool send_doubtful = false;
  int ratio = 100;
  bool fit = false;
  bool save = false;
};
struct LensOptions {
  int width = 1920;
  int ratio = 100;
  bool send_doubtful = false;
  bool save = false;
  std::filesystem::path samples;
  std::filesystem::path field;
};
struct AwbOptions {};

constexpr int kWideLine = 1920;
constexpr int kNarrowLine = 1280;

Doubtful doubtful(bool send) {
  return send ? Doubtful::send : Doubtful::refuse;
}

/// A measurement that is given up leaves the chip with its picker off, and exposure and white balance
/// running. What the page has besides is the chip's.
Task<> begin(Chip& chip, UnattendedHost& host, TuningDesk& desk) {
  chip.on_interrupt([&host] { host.stop(); });
  const bool loaded = co_await desk.load_from_chip();
  if (!loaded)
    throw Complaint{ExitCode::negative, std::string(desk.model().texts().name) + ": the chip did not answer"};
}

/// The page's full save, so that the chip keeps what was measured over a power cycle.
Task<> keep(Chip& chip, UnattendedHost& host, TuningDesk& desk) {
  if (host.stopped()) throw Complaint{ExitCode::negative, "Interrupted"};
  // The measurement could end by itself; a save ends wherever it is, and its brackets are closed.
  chip.on_interrupt({});
  chip.out().remark(std::string(desk.model().texts().name) + ": saving\n");
  const bool saved = co_await desk.send_save(desk.full_save(), std::string());
  if (!saved) throw Complaint{ExitCode::port_failed, host.last_failure()};
  if (!host.last_failure().empty()) throw Complaint{ExitCode::negative, host.last_failure()};
}

void check_end(Chip& chip, const std::string& trouble) {
  chip.out().progress("");
  if (!trouble.empty()) throw Complaint{ExitCode::negative, trouble};
}

void show_patches(Output& out, const MatrixDesk& desk) {
  out.result({{"patches", desk.values().measured}}, patches_text(desk.values().measured));
}

void show_fit(Output& out, const MatrixDesk& desk, const PatchReport& report) {
  const MatrixFit fit{desk.values().coefficients};
  Json json = matrix_json(fit, report);
  json["measured"] = desk.values().measured;
  out.result(json, matrix_text(fit, report));
}

Task<ExitCode> measure(Chip& chip, const MatrixOptions& options, ChartPlace place) {
  UnattendedHost host(chip.link(), progress_of(chip));
  UserDataImage image;
  MatrixDesk desk(host, image);
  co_await begin(chip, host, desk);
  desk.type_ratio(options.ratio);
  const bool fit = options.fit || options.save;
  const MatrixMeasurement measured =
      co_await measure_matrix(host, desk, place, fit, doubtful(options.send_doubtful));
  check_end(chip, measured.trouble);
  if (options.save) co_await keep(chip, host, desk);
  if (fit && measured.report) {
    show_fit(chip.out(), desk, *measured.report);
  } else {
    show_patches(chip.out(), desk);
  }
  co_return ExitCode::done;
}

Task<ExitCode> measure(Chip& chip, const LensOptions& options) {
  UnattendedHost host(chip.link(), progress_of(chip));
  UserDataImage image;
  LensDesk desk(host, image);
  co_await begin(chip, host, desk);
  desk.choose_screen(options.width == kNarrowLine ? 1 : 0);
  desk.move_ratio(options.ratio);
  const LensMeasurement measured = co_await measure_lens(host, desk, doubtful(options.send_doubtful));
  check_end(chip, measured.trouble);
  if (!options.samples.empty()) write_file(options.samples, samples_text(desk.calibration().samples));
  if (!options.field.empty()) {
    const std::string trouble = co_await measure_field(host, desk);
    check_end(chip, trouble);
    write_file(options.field, field_text(desk.picture()));
  }
  if (options.save) co_await keep(chip, host, desk);
  const LensCalibration& calibration = desk.calibration();
  Json json = lens_json(calibration.centre, calibration.fit);
  json["ripple"] = measured.ripple;
  json["ripple_before"] = measured.ripple_before;
  const std::string ripple =
      "ripple: " + fixed(measured.ripple_before, 1) + " -> " + fixed(measured.ripple, 1) + " %\n";
  chip.out().result(json, lens_text(calibration.centre, calibration.fit) + ripple);
  co_return ExitCode::done;
}

Task<ExitCode> measure(Chip& chip, const AwbOptions&) {
  UnattendedHost host(chip.link(), progress_of(chip));
  UserDataImage image;
  AwbDesk desk(host, image);
  const std::string trouble = co_await measure_awb(host, desk);
  check_end(chip, trouble);
  const PatchColour& colour = desk.values().patches[0];
  chip.out().result(
      {{"r", colour.r}, {"g", colour.g}, {"b", colour.b}},
      std::to_string(colour.r) + "," + std::to_string(colour.g) + "," + std::to_string(colour.b) + "\n");
  co_return ExitCode::done;
}

PickerPosition position(const std::string& option, const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) refuse(option + ": \"" + text + "\" is not of the form X,Y");
  return {number_in(option, text.substr(0, comma), 0, kPickerMaximumX),
          number_in(option, text.substr(comma + 1), 0, kPickerMaximumY)};
}

ChartPlace chart_place(const MatrixOptions& options) {
  if (options.corners.empty()) {
    const PickerPosition first = options.first.empty() ? kFirstPatch : position("--first", options.first);
    const auto place = straight_chart(first, options.step);
    if (!place) refuse("--step: the chart would go beyond the picture");
    return *place;
  }
  ChartPlace place{};
  for (std::size_t i = 0; i < place.size(); ++i) place[i] = position("--corners", options.corners[i]);
  if (!is_chart(place)) refuse("--corners: these do not go round a chart");
  return place;
}

ExitCode run_matrix(Context& context, const MatrixOptions& options) {
  const ChartPlace place = chart_place(options);
  return run_on_chip(context, [&](Chip& chip) { return measure(chip, options, place); });
}

ExitCode run_lens(Context& context, const LensOptions& options) {
  if (options.width != kWideLine && options.width != kNarrowLine) refuse("--width is 1920 or 1280");
  return run_on_chip(context, [&](Chip& chip) { return measure(chip, options); });
}

ExitCode run_awb(Context& context, const AwbOptions& options) {
  return run_on_chip(context, [&](Chip& chip) { return measure(chip, options); });
}

void add_doubtful(CLI::App& command, bool& send) {
  command.add_flag("--send-doubtful", send, "Send also what the page would ask about first");
}

void declare_matrix(CLI::App& command, MatrixOptions& options) {
  auto* first =
      command.add_option("--first", options.first, "The middle of the first patch (default 360,180)")
          ->type_name("X,Y");
  auto* step = add_number(command, "--step", options.step, 1, kPickerMaximumX,
                          "Pixels from a patch to the next, across and down (default 240)");
  command
      .add_option(
          "--corners", options.corners,
          "The middles of the four patches at the corners of a chart that stands in any way, round it "
          "from the first: Dark skin, Bluish green, Black, White")
      ->type_name("X,Y")
      ->expected(4)
      ->excludes(first)
      ->excludes(step);
  add_number(command, "--ratio", options.ratio, 0, 100, "Correction ratio in percent (default 100)");
  command.add_flag("--fit", options.fit, "Fit the matrix and send it to the chip");
  command.add_flag("--save", options.save, "The same, and save the page on the chip");
  add_doubtful(command, options.send_doubtful);
}

void declare_lens(CLI::App& command, LensOptions& options) {
  add_number(command, "--width", options.width, 1, kWideLine,
             "Pixels in a line, 1920 or 1280 (default 1920)");
  add_number(command, "--ratio", options.ratio, 0, 100, "Correction ratio in percent (default 100)");
  add_path(command, "--samples", options.samples, "Write what was measured along the line: x,R,G,B");
  add_path(command, "--field", options.field,
           "Measure the whole picture behind the correction at 9 x 5 places, and write R,G,B of each");
  command.add_flag("--save", options.save, "Save the page on the chip with what was measured");
  add_doubtful(command, options.send_doubtful);
}

}  // namespace

void add_matrix_measure(CLI::App& matrix, Context& context) {
  add_command<MatrixOptions>(
      matrix, context, "measure",
      "Measure the 24 patches of the chart that the camera looks at; print R,G,B of each", declare_matrix,
      run_matrix);
}

void add_lens_measure(CLI::App& lens, Context& context) {
  add_command<LensOptions>(lens, context, "measure",
                           "Measure the fall-off along the line, fit the parameters and send them",
                           declare_lens, run_lens);
}

void add_awb_commands(CLI::App& app, Context& context) {
  CLI::App* awb = add_group(app, "awb", "White balance");
  add_command<AwbOptions>(
      *awb, context, "measure", "Print what the white balance's picker reads: R,G,B",
      [](CLI::App&, AwbOptions&) {}, run_awb);
}

}  // namespace qv5123
