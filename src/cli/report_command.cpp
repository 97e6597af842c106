#include "cli/report_command.h"

#include <utility>

#include "base/atomic_file.h"
#include "base/text.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/measured_files.h"
#include "cli/page_reading.h"
#include "state/sign_off_values.h"
#include "state/write_journal_files.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/video_mode.h"

namespace qv5123 {
namespace {

constexpr int kWholeRatio = 100;

struct ReportOptions {
  std::filesystem::path out;
  std::filesystem::path settings;
  std::filesystem::path limits;
  std::filesystem::path firmware;
  std::filesystem::path font;
  std::filesystem::path patches;
  std::filesystem::path lens;
  std::filesystem::path field;
  int width = 1920;
  std::filesystem::path journal;
  std::string serial_number;
  std::string notes;
  bool lenient = false;
};

/// What is read of the files before the chip is asked for anything.
struct Given {
  SignOff report;
  std::optional<UserDataImage> image;
  std::vector<Limit> limits;
  std::optional<MeasuredColours> measured;
};

std::string extension_of(const std::filesystem::path& path) {
  return lower_case(path_text(path.extension()));
}

void add_file(SignOff& report, const char* role, const std::filesystem::path& path) {
  if (!path.empty()) report.files.push_back(sign_off_file(role, path_text(path.filename()), read_file(path)));
}

LensCalibration lens_of(const ReportOptions& options) {
  LensCalibration lens;
  lens.width = options.width;
  lens.samples = read_samples(options.lens, options.width);
  lens.centre = fit_lens_centre(lens.samples, lens.width);
  lens.fit = fit_lens(lens.samples, lens.centre, kWholeRatio);
  if (!lens.fit.determined) refuse(path_text(options.lens) + ": too few positions to determine the centre");
  return lens;
}

Given given_by(Context& context, const ReportOptions& options) {
  Given given;
  SignOff& report = given.report;
  report.program = "qv5123ctl " QV5123_VERSION;
  report.time = iso_time(std::chrono::system_clock::now());
  report.port = context.globals.simulate ? "simulated chip" : context.globals.port;
  report.serial_typed = options.serial_number;
  report.notes = options.notes;
  add_file(report, "Setting file", options.settings);
  add_file(report, "Firmware", options.firmware);
  add_file(report, "Font", options.font);
  if (!options.settings.empty()) given.image = read_whole_settings(options.settings, options.lenient);
  if (!options.limits.empty()) {
    Limits limits = read_limits(read_file(options.limits));
    if (!limits.faults.empty()) refuse(path_text(options.limits) + ": " + limits.faults.front());
    given.limits = std::move(limits.limits);
  }
  if (!options.patches.empty()) given.measured = read_patches(options.patches);
  if (!options.lens.empty()) report.lens = lens_of(options);
  if (!options.field.empty()) report.field = read_field(options.field);
  if (!options.journal.empty()) {
    OpenedJournal opened = open_journal_file(options.journal);
    if (!opened.opens) refuse(opened.remarks.front());
    for (const std::string& remark : opened.remarks) context.out.warning(remark);
    report.journal = journal_summary(opened.journal);
  }
  return given;
}

/// The matrix that the chip uses outdoors in its video mode.
void add_chart(Given& given, MatrixValues matrix, int video_mode) {
  if (!given.measured) return;
  if (const auto mode = video_mode_of(video_mode)) matrix.mode = mode->signal;
  show_matrix(matrix);
  given.report.measured = *given.measured;
  given.report.chart = patch_report(*given.measured, matrix.coefficients);
  given.report.chart_of = matrix_place_text(matrix);
}

/// All pages from the chip, and what the report shows of them beside their values.
Task<> read_chip(Chip& chip, Given& given) {
  ValueStates values(chip.link());
  if (given.image) values.file_is(*given.image);
  PageModel<FrontPage> front;
  PageModel<AwbPage> awb;
  PageModel<DynamicPage> dynamic;
  PageModel<GammaPage> gamma;
  PageModel<MatrixPage> matrix;
  PageModel<LensPage> lens;
  // What no reply holds the file may.
  if (given.image) awb.load(*given.image);
  TuningModel* const models[] = {&front, &awb, &dynamic, &gamma, &matrix, &lens};
  for (TuningModel* model : models) {
    const std::uint64_t asked_at = values.jobs();
    const std::string reply = co_await read_page(chip, *model);
    values.page_reported(values.page_named(model->texts().name), reply, asked_at);
  }
  SignOff& report = given.report;
  report.pages = sign_off_pages(values);
  report.awb = awb.values;
  report.gamma = gamma.values;
  report.parameter1 = lens.values.parameter1;
  report.parameter2 = lens.values.parameter2;
  add_chart(given, matrix.values, front.values.video_mode);
}

std::string verdict_text(const SignOff& report) {
  std::string text;
  for (const JudgedLimit& limit : report.limits)
    if (!limit.met)
      text += limit.limit.name + (limit.value ? ": " + figure_text(*limit.value, 3) + " is beyond its limit\n"
                                              : ": not measured\n");
  return text;
}

Task<ExitCode> make_report(Chip& chip, const ReportOptions& options, Given given) {
  co_await read_chip(chip, given);
  SignOff& report = given.report;
  take_board(report, chip.greeting(), given.image ? &*given.image : nullptr);
  report.limits = judged(given.limits, figures_of(report));
  const bool as_json = extension_of(options.out) == ".json";
  write_file(options.out, as_json ? sign_off_json(report) : sign_off_html(report));
  const std::string missed = verdict_text(report);
  Json json = {{"file", path_text(options.out)}, {"limits", report.limits.size()}, {"missed", Json::array()}};
  for (const JudgedLimit& limit : report.limits)
    if (!limit.met) json["missed"].push_back(limit.limit.name);
  chip.out().result(json, missed);
  chip.out().remark(path_text(options.out) + ": written\n");
  co_return missed.empty() ? ExitCode::done : ExitCode::negative;
}

ExitCode run(Context& context, const ReportOptions& options) {
  if (extension_of(options.out) == ".pdf")
    refuse(path_text(options.out) +
           ": the window writes reports as PDF; here they are .html, or .json where the name ends so");
  Given given = given_by(context, options);
  return run_on_chip(context, [&](Chip& chip) { return make_report(chip, options, std::move(given)); });
}

void declare(CLI::App& command, ReportOptions& options) {
  add_path(command, "FILE", options.out, "The report: JSON where the name ends in .json, else HTML")
      ->required();
  add_path(command, "--from", options.settings, "The setting file that the chip is compared with");
  add_path(command, "--limits", options.limits,
           "Limits, a line each: \"name, low, high\" or \"mean color difference <= 2\"; one that is missed "
           "ends the command with code 1");
  add_path(command, "--firmware", options.firmware, "A file whose SHA-256 the report tells");
  add_path(command, "--font", options.font, "The same");
  add_path(command, "--patches", options.patches, "24 lines R,G,B as \"matrix measure\" prints them");
  add_path(command, "--lens", options.lens, "Lines x,R,G,B as \"lsc measure --samples\" writes them");
  add_number(command, "--width", options.width, 1, 4096, "With that: pixels in a line (default 1920)");
  add_path(command, "--field", options.field, "45 lines R,G,B as \"lsc measure --field\" writes them");
  add_path(command, "--journal", options.journal, "A journal of writes to sum up");
  command
      .add_option("--serial", options.serial_number,
                  "The serial number to stand beside the one that the chip tells")
      ->type_name("TEXT");
  command.add_option("--notes", options.notes, "A line of notes")->type_name("TEXT");
  add_lenient(command, options.lenient);
}

}  // namespace

void add_report_command(CLI::App& app, Context& context) {
  add_command<ReportOptions>(app, context, "report",
                             "Read all pages from the chip and write a report to be signed", declare, run);
}

}  // namespace qv5123
