#include "tuning/script_player.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <sstream>
#include <utility>

#include "base/atomic_file.h"
#include "base/delay.h"
#include "tuning/page_flows.h"
#include "tuning/register_script.h"

namespace qv5123 {
namespace {

/// A script of more bytes would play for days.
constexpr std::uintmax_t kLargestScript = std::uintmax_t{64} << 20;

struct ReadScript {
  FileResult result;
  std::string text;
  bool too_large = false;
};

}  // namespace

/// Says that it plays until it is over, whatever ends it.
class ScriptPlayer::Playing {
 public:
  explicit Playing(ScriptPlayer& player) : player_(player) { show(true); }
  Playing(const Playing&) = delete;
  Playing& operator=(const Playing&) = delete;
  ~Playing() { show(false); }

 private:
  void show(bool playing) {
    player_.playing_ = playing;
    player_.view_->show_playing(playing);
  }

  ScriptPlayer& player_;
};

void ScriptPlayer::press() {
  if (!flow_.running()) return flow_.start(run());
  if (!playing_) return;
  stop();
  host_.show_status("Register file: stopped.");
}

Task<> ScriptPlayer::run() {
  FileChoice choice{"Setting Files (*.txt)|*.txt|All Files (*.*)|*.*||", "txt", "",
                    "Choose the file to send line by line", "registers"};
  const auto path = co_await host_.prompts().choose_open(std::move(choice));
  if (!path) co_return;
  const BusyScope busy(host_);
  const Playing playing(*this);
  auto text = co_await read(*path);
  if (!text) co_return;
  const std::size_t played = co_await play(std::move(*text));
  if (played > 0)
    host_.show_status(path_text(path->filename()) + ": " + std::to_string(played) +
                      (played == 1 ? " line sent" : " lines sent"));
}

/// Nothing is said of a file that does not open.
Task<std::optional<std::string>> ScriptPlayer::read(std::filesystem::path path) {
  // All of it at once and beside the window: a file on a network may take its time.
  std::function<ReadScript()> read = [path] {
    ReadScript script;
    std::error_code error;
    script.too_large = std::filesystem::file_size(path, error) > kLargestScript && !error;
    script.result = read_whole_file(path, script.text, kLargestScript);
    return script;
  };
  ReadScript script = co_await host_.background().run(std::move(read));
  if (script.result.ok()) co_return std::move(script.text);
  if (script.too_large) host_.show_failure(script.result.text);
  co_return std::nullopt;
}

/// One line a tick, later where the wire is taken: what waits for it must not pile up behind.
Task<std::size_t> ScriptPlayer::play(std::string text) {
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  RegisterScript script(std::make_unique<std::istringstream>(std::move(text)));
  std::optional<Pending<JobResult>> sent;
  std::size_t played = 0;
  for (std::size_t line = 0;; ++line) {
    co_await Delay(host_.scheduler(), RegisterScript::kTick);
    if (sent) {
      Pending<JobResult> last = std::move(*sent);
      const JobResult result = co_await last;
      if (result.failed) {
        host_.show_failure("Register file: line " + std::to_string(line) + " did not reach the chip.");
        co_return 0;
      }
    }
    RegisterScript::Step step = script.tick();
    if (step.finished) co_return played;
    host_.show_progress(static_cast<int>(std::min(line, lines) * 100 / lines));
    sent.reset();
    if (step.batch.empty()) continue;
    ++played;
    sent.emplace(host_.link().send(std::move(step.batch)));
  }
}

}  // namespace qv5123
