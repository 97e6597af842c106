#include "cli/terminal.h"

#include <io.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <thread>

#include "base/handle_win32.h"
#include "cli/line_splitter.h"

namespace qv5123 {

bool stderr_is_terminal() {
  return _isatty(_fileno(stderr)) != 0;
}

// Only a write tells here.
bool stdout_reader_gone() {
  return false;
}

// Writes to a closed pipe fail by themselves here, and handles have no numbers to be taken over.
void prepare_standard_streams() {}

class LineInput::Reader {
 public:
  explicit Reader(std::function<void(std::string)> on_line)
      : lines_(std::move(on_line)), thread_([this] { read_all(); }) {}
  /// A read of a console or a pipe ends only when it is cancelled, and one that is about to begin is not
  /// cancelled yet.
  ~Reader() {
    ending_ = true;
    const std::future<void> ended = ended_.get_future();
    const Handle thread(OpenThread(THREAD_TERMINATE, FALSE, id_.get_future().get()));
    do {
      CancelSynchronousIo(thread.get());
    } while (ended.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready);
    thread_.join();
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

 private:
  void read_all() {
    id_.set_value(GetCurrentThreadId());
    char buffer[4096];
    DWORD count = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    while (!ending_ && ReadFile(input, buffer, sizeof buffer, &count, nullptr) && count > 0) {
      lines_.add({buffer, count});
    }
    if (!ending_) lines_.end();
    ended_.set_value();
  }

  LineSplitter lines_;
  std::atomic<bool> ending_{false};
  std::promise<DWORD> id_;
  std::promise<void> ended_;
  std::thread thread_;
};

LineInput::LineInput(std::function<void(std::string)> on_line)
    : reader_(std::make_unique<Reader>(std::move(on_line))) {}
LineInput::~LineInput() = default;

}  // namespace qv5123
