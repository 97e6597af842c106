#include <algorithm>
#include <chrono>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "base/text.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "state/replay_script.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

struct ReplayOptions {
  std::filesystem::path file;
  bool dry_run = false;
};

/// A wait is looked at this often for an interrupt.
constexpr milliseconds kLook{50};

struct ReplaySum {
  std::size_t flushes = 0;
  std::size_t writes = 0;
  milliseconds time{0};
};

ReplaySum sum_of(const ReplayScript& script) {
  ReplaySum sum;
  for (const ReplayStep& step : script.steps) {
    sum.time += step.wait;
    if (step.flush.empty()) continue;
    ++sum.flushes;
    sum.writes += step.flush.size();
    sum.time += kNormalPacing;
  }
  return sum;
}

ReplayScript read_script(const ReplayOptions& options) {
  ReplayScript script = read_replay_script(read_file(options.file));
  if (!script.fault.empty()) refuse(path_text(options.file) + ", " + script.fault);
  if (sum_of(script).writes == 0) refuse(path_text(options.file) + " has no register to write");
  return script;
}

void tell(Context& context, const ReplayOptions& options, const ReplaySum& sum, bool sent) {
  context.out.result(Json{{"file", path_text(options.file)},
                          {"flushes", sum.flushes},
                          {"writes", sum.writes},
                          {"ms", sum.time.count()},
                          {"sent", sent}});
}

std::string flushes_text(std::size_t flushes) {
  return std::to_string(flushes) + (flushes == 1 ? " flush" : " flushes");
}

/// The script as it would be sent, from nothing but the file.
ExitCode show(Context& context, const ReplayOptions& options, const ReplayScript& script) {
  std::string text;
  for (const ReplayStep& step : script.steps) {
    if (step.wait.count() > 0) text += "wait " + std::to_string(step.wait.count()) + "\n";
    if (!step.flush.empty()) text += replay_line(step.flush) + "\n";
  }
  const ReplaySum sum = sum_of(script);
  context.out.text(text);
  tell(context, options, sum, false);
  // As a remark of the script, too.
  context.out.remark("# " + counted(sum.writes, "register") + " in " + flushes_text(sum.flushes) +
                     ", at least " + std::to_string(sum.time.count()) + " ms; nothing was sent\n");
  return ExitCode::done;
}

/// Waits in pieces, so that an interrupt need not wait for all of it.
Task<> wait(Chip& chip, milliseconds time, const bool& ended) {
  const milliseconds end = chip.link().scheduler().now() + time;
  while (!ended && chip.link().scheduler().now() < end)
    co_await Delay(chip.link().scheduler(), std::min(kLook, end - chip.link().scheduler().now()));
}

[[noreturn]] void end_in_the_middle(const ReplayOptions& options, const ReplayStep& next) {
  throw Complaint{ExitCode::negative,
                  "Interrupted before " + path_text(options.file) + ", line " + std::to_string(next.line)};
}

Task<ExitCode> play(Chip& chip, const ReplayOptions& options, const ReplayScript& script) {
  bool ended = false;
  chip.on_interrupt([&ended] { ended = true; });
  const ReplaySum sum = sum_of(script);
  std::size_t sent = 0;
  for (const ReplayStep& step : script.steps) {
    co_await wait(chip, step.wait, ended);
    if (ended) end_in_the_middle(options, step);
    if (step.flush.empty()) continue;
    Traffic flush;
    flush.push_back(step.flush);
    co_await chip.send(std::move(flush));
    chip.out().progress(std::to_string(++sent) + " of " + flushes_text(sum.flushes));
  }
  chip.out().progress("");
  tell(chip.context(), options, sum, true);
  chip.out().remark(path_text(options.file) + ": " + counted(sum.writes, "register") + " written\n");
  co_return ExitCode::done;
}

ExitCode run(Context& context, const ReplayOptions& options) {
  const ReplayScript script = read_script(options);
  if (options.dry_run) return show(context, options, script);
  return run_on_chip(context, [&](Chip& chip) { return play(chip, options, script); });
}

void declare(CLI::App& command, ReplayOptions& options) {
  add_path(command, "FILE", options.file, "The register script")->required();
  command.add_flag("--dry-run", options.dry_run, "Print what would be sent, and send nothing; needs no chip");
}

}  // namespace

void add_replay_command(CLI::App& app, Context& context) {
  add_command<ReplayOptions>(app, context, "replay", "Play a register script that the window's history saved",
                             declare, run);
}

}  // namespace qv5123
