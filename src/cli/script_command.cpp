#include <sstream>
#include <utility>

#include "cli/chip.h"
#include "cli/command.h"
#include "cli/files.h"
#include "console/atomic_file.h"
#include "tuning/register_script.h"

namespace qv5123 {
namespace {

struct ScriptOptions {
  std::filesystem::path file;
};

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
    co_await chip.link().delay(RegisterScript::kTick);
  }
  chip.out().result(Json{{"file", path_text(options.file)}, {"writes", writes}});
  chip.out().remark(path_text(options.file) + ": " + std::to_string(writes) + " registers written\n");
  co_return kDone;
}

ExitCode run(Context& context, const ScriptOptions& options) {
  const std::string text = read_file(options.file);
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
