#include "console/slow_write.h"

#include <utility>

#include "base/delay.h"

namespace qv5123 {
namespace {

Task<> tell_slow(Scheduler& scheduler, std::function<void(const std::string&)> say, std::string name) {
  co_await Delay(scheduler, kSlowWrite);
  say("Still writing " + name + " ...");
}

}  // namespace

Task<FileResult> write_in_background(Background& background, Scheduler& scheduler,
                                     std::function<void(const std::string&)> say, std::filesystem::path path,
                                     std::function<FileResult()> work) {
  const Flow slow(tell_slow(scheduler, std::move(say), path_text(path)));
  co_return co_await background.run<FileResult>(std::move(work));
}

Task<FileResult> write_in_background(PageHost& host, std::filesystem::path path,
                                     std::function<FileResult()> work) {
  return write_in_background(
      host.background(), host.scheduler(), [&host](const std::string& text) { host.show_failure(text); },
      std::move(path), std::move(work));
}

}  // namespace qv5123
