#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "link/reply_text.h"
#include "tuning/register_script.h"

namespace qv5123 {
namespace {

struct ScriptOptions {
  std::filesystem::path file;
};

bool is_hex(std::string_view line, std::size_t start, std::size_t count) {
  return line.size() >= start + count && all_hex_digits(line.substr(start, count));
}

/// The window plays whatever a line holds. From here a wrong file would be written to the chip unseen.
void check_script(const std::filesystem::path& path, std::string_view text) {
  std::size_t writes = 0;
  for (std::size_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty()) continue;
    if (!is_hex(line, 0, 3) || !is_hex(line, 4, 2) || line.size() >= RegisterScript::kLongest) {
      refuse(path_text(path) + ", line " + std::to_string(number) + ": not of the form \"AAA,DD\"");
    }
    ++writes;
  }
  if (writes == 0) refuse(path_text(path) + " has no register to write");
}

Task<ExitCode> play(Chip& chip, const ScriptOptions& options, std::string text) {
  RegisterScript script(std::make_unique<std::istringstream>(std::move(text)));
  std::size_t writes = 0;
  for (RegisterScript::Step step = script.tick(); !step.finished; step = script.tick()) {
    if (!step.batch.empty()) {
      Traffic write;
      write.push_back(std::move(step.batch));
      co_await chip.send(std::move(write));
      chip.out().progress(std::to_string(++writes) + " registers written");
    }
    co_await Delay(chip.link().scheduler(), RegisterScript::kTick);
  }
  chip.out().result(Json{{"file", path_text(options.file)}, {"writes", writes}});
  chip.out().remark(path_text(options.file) + ": " + std::to_string(writes) + " registers written\n");
  co_return ExitCode::done;
}

ExitCode run(Context& context, const ScriptOptions& options) {
  const std::string text = read_file(options.file);
  check_script(options.file, text);
  return run_on_chip(context, [&](Chip& chip) { return play(chip, options, text); });
}

}  // namespace

void add_script_command(CLI::App& app, Context& context) {
  add_command<ScriptOptions>(
      app, context, "script", "Play an ISP register script, lines \"AAA,DD\" in hex",
      [](CLI::App& command, ScriptOptions& options) {
        add_path(command, "FILE", options.file, "The script")->required();
      },
      run);
}

}  // namespace qv5123
