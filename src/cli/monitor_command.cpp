#include <chrono>
#include <ctime>
#include <fstream>
#include <optional>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/line_splitter.h"
#include "cli/reply_meaning.h"
#include "cli/terminal.h"
#include "cli/throttle.h"

namespace qv5123 {
namespace {

constexpr int kLongest = 86'400'000;

struct MonitorOptions {
  bool timestamps = false;
  std::filesystem::path log;
  int milliseconds = 0;
};

/// "2024-05-17 12:34:56.789", local time.
std::string time_text() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
  char day[32];
  std::strftime(day, sizeof day, "%Y-%m-%d %H:%M:%S", std::localtime(&seconds));
  const std::string milliseconds = std::to_string(since.count() % 1000);
  return day + ("." + std::string(3 - milliseconds.size(), '0') + milliseconds);
}

/// The console both ways for as long as it lasts.
class Monitor {
 public:
  Monitor(Chip& chip, const MonitorOptions& options) : chip_(chip), options_(options) {
    if (options.log.empty()) return;
    log_.open(options.log, std::ios::binary | std::ios::app);
    if (!log_) refuse("Cannot write " + path_text(options.log));
  }

  ~Monitor() { unsent_.end(); }
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  Task<ExitCode> run() {
    chip_.on_console([this](const std::string& text) { take_console(text); });
    chip_.on_interrupt([this] { stop_.resolve(true); });
    chip_.only_print();
    Flow replies(take_replies());
    Flow end(end_in_time());
    Flow reader(look_for_reader());
    // What a pipe has ready at once would be taken for asked by the blocks of the greeting.
    co_await chip_.wait_for_quiet(Chip::kGreeting, Chip::kLongestGreeting);
    input_.emplace([this](std::string line) {
      if (!unsent_.enter()) return;
      chip_.link().scheduler().post([this, line = std::move(line)] { sending_.spawn(send(line)); });
    });
    co_await stop_.pending();
    console_.end();
    if (log_.is_open() && !log_.flush()) refuse("Cannot write " + path_text(options_.log));
    co_return ExitCode::done;
  }

 private:
  bool streams() const { return !options_.timestamps && !chip_.out().json(); }

  void take_console(const std::string& text) {
    const std::string shown = chip_text(text);
    if (streams()) chip_.out().text(shown);
    console_.add(shown);
  }

  Task<> take_replies() {
    const CommandLink::Turn turn = co_await chip_.link().turn();
    while (true) {
      const auto block = co_await chip_.link().next_block(std::chrono::milliseconds(kLongest));
      if (!block) continue;
      const std::string meaning = meaning_.of(*block);
      if (streams()) chip_.out().text("= " + meaning + "\n");
      record('=', "reply", meaning);
    }
  }

  /// As typed, without a line end: the chip knows frames and letters, not lines.
  Task<> send(std::string line) {
    meaning_.note_sent(line);
    record('>', "sent", line);
    Job job;
    job.chunks.emplace_back().bytes.assign(line.begin(), line.end());
    co_await chip_.link().send(std::move(job));
    unsent_.leave();
  }

  Task<> end_in_time() {
    if (options_.milliseconds == 0) co_return;
    co_await Delay(chip_.link().scheduler(), std::chrono::milliseconds(options_.milliseconds));
    // Not from here: this flow ends with what is resumed.
    chip_.link().scheduler().post([this] { stop_.resolve(true); });
  }

  /// A silent chip gives nothing to write that could fail.
  Task<> look_for_reader() {
    while (true) {
      co_await Delay(chip_.link().scheduler(), kLookEvery);
      chip_.out().look_for_reader();
    }
  }

  void record(char mark, const char* kind, const std::string& text) {
    const std::string time = time_text();
    const std::string line = time + " " + mark + " " + text + "\n";
    if (log_.is_open()) log_ << visible(line) << std::flush;
    if (!streams()) chip_.out().event({{"time", time}, {kind, text}}, line);
  }

  static constexpr std::chrono::milliseconds kLookEvery{200};
  static constexpr std::size_t kMostUnsent = 64;  // a pipe has lines faster than the chip takes them

  Chip& chip_;
  const MonitorOptions& options_;
  std::ofstream log_;
  Resolver<bool> stop_;
  LineSplitter console_{[this](const std::string& line) { record('<', "console", line); }};
  ReplyMeaning meaning_;
  FlowSet sending_;
  Throttle unsent_{kMostUnsent};
  std::optional<LineInput> input_;
};

Task<ExitCode> watch(Chip& chip, const MonitorOptions& options) {
  Monitor monitor(chip, options);
  co_return co_await monitor.run();
}

ExitCode run(Context& context, const MonitorOptions& options) {
  return run_on_chip(
      context, [&options](Chip& chip) { return watch(chip, options); }, Chip::Begin::at_once);
}

}  // namespace

void add_monitor_command(CLI::App& app, Context& context) {
  add_command<MonitorOptions>(
      app, context, "monitor",
      "Show the chip's console and its replies, and send what is typed, until Ctrl-C",
      [](CLI::App& command, MonitorOptions& options) {
        command.add_flag("--timestamps", options.timestamps, "Print each line with its time and direction");
        add_path(command, "--log", options.log, "Add each line with its time and direction to this file");
        add_number(command, "--for", options.milliseconds, 1, kLongest, "End by itself after that time")
            ->type_name("MS");
      },
      run);
}

}  // namespace qv5123
