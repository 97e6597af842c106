#include <optional>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "base/interrupts.h"
#include "base/loop_scheduler.h"
#include "base/virtual_scheduler.h"
#include "cli/command.h"
#include "cli/provision_view.h"
#include "link/port_list.h"
#include "link/serial_device.h"
#include "link/trace_device.h"
#include "provision/dry_run.h"
#include "provision/production_line.h"

namespace qv5123 {
namespace {

struct ProvisionOptions {
  std::filesystem::path recipe;
  std::filesystem::path records;
  std::filesystem::path metrics;
  bool watch = false;
  bool dry_run = false;
};

constexpr std::chrono::milliseconds kDrawEvery{250};
constexpr unsigned kDryRate = 19200;

Recipe recipe_of(const ProvisionOptions& options) {
  ReadRecipe read = read_recipe(options.recipe);
  if (!read.problem.empty()) refuse(read.problem);
  return std::move(read.recipe);
}

/// The file that a name leads to; empty where there is none, as for Windows' ports.
std::filesystem::path file_of(const std::string& port) {
  std::error_code error;
  return std::filesystem::canonical(port, error);
}

/// Whether the system opens the same under both names.
bool is_same_port(const std::string& one, const std::string& other) {
  const std::filesystem::path file = file_of(one);
  return openable_name(one) == openable_name(other) || (!file.empty() && file == file_of(other));
}

void check_ports(const std::vector<std::string>& ports) {
  for (std::size_t i = 0; i < ports.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (is_same_port(ports[i], ports[j]))
        refuse("--port: " + ports[j] + " and " + ports[i] + " are one device");
}

std::filesystem::path records_path(const ProvisionOptions& options, const Recipe& recipe) {
  if (!options.records.empty()) return options.records;
  // A rehearsal leaves no records unless it is told where.
  if (options.dry_run) return {};
  if (!recipe.records.empty()) return recipe.records;
  std::filesystem::path path = recipe.path;
  path.replace_extension(".records.jsonl");
  return path;
}

ProductionLine::Options line_options(const Context& context, const ProvisionOptions& options) {
  ProductionLine::Options line;
  line.watch = options.watch;
  line.timeout = context.globals.timeout;
  // They tell of boards.
  if (!options.dry_run) line.metrics = options.metrics;
  line.dry = options.dry_run;
  return line;
}

ExitCode end(Context& context, const ProductionLine& line, bool interrupted) {
  if (!line.record_trouble().empty())
    throw Complaint{ExitCode::bad_input, "No unit is begun: " + line.record_trouble()};
  if (interrupted) throw Complaint{ExitCode::negative, "Interrupted"};
  context.out.remark(std::to_string(line.passed()) + " passed, " + std::to_string(line.failed()) +
                     " failed\n");
  return line.failed() == 0 ? ExitCode::done : ExitCode::negative;
}

ExitCode run_dry(Context& context, const ProvisionOptions& options, const Recipe& recipe) {
  std::vector<std::string> ports = context.globals.ports;
  if (ports.empty()) ports.emplace_back("simulated");
  VirtualScheduler scheduler;
  InlineWork background(scheduler);
  const RecordBook records(records_path(options, recipe));
  ProvisionView view(context.out, recipe);
  ProductionLine line(scheduler, background, recipe, records, view, line_options(context, options));
  LineOptions simulated;
  simulated.line_rate = kDryRate;
  for (const std::string& port : ports) line.add(std::make_unique<SimulatedPort>(scheduler, port, simulated));
  line.start();
  scheduler.run_until([&] { return line.over(); });
  return end(context, line, false);
}

/// The line on real ports, from its start to its end.
class Station {
 public:
  Station(Context& context, const ProvisionOptions& options, const Recipe& recipe)
      : interrupts_([this] { scheduler_.post([this] { take_interrupt(); }); },
                    {"qv5123ctl: Interrupted\n", static_cast<int>(ExitCode::negative)}),
        view_(context.out, recipe),
        records_(records_path(options, recipe)),
        line_(scheduler_, background_, recipe, records_, view_, line_options(context, options)) {
    for (const std::string& port : context.globals.ports)
      line_.add(make_board_port(scheduler_, make_device(context), port, context.globals.line));
  }

  void run() {
    line_.start();
    Flow drawing(draw());
    scheduler_.run_until([&] { return line_.over(); });
    drawing.cancel();
    view_.draw(line_.places());
  }
  const ProductionLine& line() const { return line_; }
  bool interrupted() const { return requests_ > 0; }

 private:
  std::unique_ptr<SerialDevice> make_device(const Context& context) {
    std::unique_ptr<SerialDevice> device = make_serial_device();
    if (context.globals.trace.empty()) return device;
    const auto trace = std::make_shared<Trace>(context.globals.trace);
    if (!trace->ok()) refuse("Cannot write " + path_text(context.globals.trace));
    return traced(std::move(device), trace);
  }
  void take_interrupt() {
    interrupts_.heard();
    // One that is asked for a third time does not wait for a driver any more.
    if (++requests_ > 2) interrupts_.ending();
    if (requests_ == 1) view_.trouble("Ctrl-C: what runs is finished; press it again to stop");
    line_.interrupt();
  }
  Task<> draw() {
    while (true) {
      view_.draw(line_.places());
      co_await Delay(scheduler_, kDrawEvery);
    }
  }

  LoopScheduler scheduler_;
  Interrupts interrupts_;
  BackgroundThread background_{scheduler_};
  ProvisionView view_;
  RecordBook records_;
  ProductionLine line_;
  int requests_ = 0;
};

ExitCode run(Context& context, const ProvisionOptions& options) {
  const Recipe recipe = recipe_of(options);
  check_ports(context.globals.ports);
  const bool traced = !context.globals.trace.empty();
  if (traced && (options.dry_run || context.globals.ports.size() > 1)) refuse("--trace is for one --port");
  if (options.dry_run) return run_dry(context, options, recipe);
  if (context.globals.ports.empty()) refuse("provision needs --port for every board, or --dry-run");
  Station station(context, options, recipe);
  station.run();
  const ProductionLine& line = station.line();
  return end(context, line, station.interrupted() && (line.failed() > 0 || line.incomplete()));
}

void declare(CLI::App& command, ProvisionOptions& options) {
  add_path(command, "RECIPE", options.recipe, "The recipe, TOML; see docs/line.md")->required();
  add_path(command, "--records", options.records,
           "Append one JSON line for every unit here (default: as the recipe says, or RECIPE.records.jsonl)");
  add_path(command, "--metrics", options.metrics, "Keep figures for a Prometheus node exporter in this file");
  auto* watch =
      command.add_flag("--watch", options.watch, "After each unit wait for the next one, until Ctrl-C");
  command
      .add_flag("--dry-run", options.dry_run, "Rehearse on simulated boards, in time that is computed only")
      ->excludes(watch);
}

}  // namespace

void add_provision_command(CLI::App& app, Context& context) {
  add_command<ProvisionOptions>(
      app, context, "provision",
      "Do what a recipe says to every board, side by side; --port may be given several "
      "times",
      declare, run);
}

}  // namespace qv5123
