// download_benchmark DEVICE BAUD FILE: sends FILE as firmware through DEVICE, as the "FW" button does, and
// prints the payload's rate over the line's own (baud / 10 bytes a second), from the first block sent to the
// last.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "console/image_transfer.h"
#include "link/background.h"
#include "link/loop_scheduler.h"
#include "link/port_session.h"
#include "link/system_serial_device.h"

namespace {

using namespace qv5123;
using Clock = std::chrono::steady_clock;

class OneFile : public Prompts {
 public:
  explicit OneFile(std::filesystem::path path) : path_(std::move(path)) {}
  Task<> message(Message message) override {
    std::fprintf(stderr, "%s\n", message.text.c_str());
    co_return;
  }
  Task<Answer> ask(Question) override { co_return Answer::cancel; }
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice) override { co_return path_; }
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice) override { co_return std::nullopt; }

 private:
  std::filesystem::path path_;
};

/// When blocks left, told by the progress bar's moves.
struct Blocks {
  std::optional<Clock::time_point> first;
  Clock::time_point last;
  int first_position = 0;
  int last_position = 0;

  void moved_to(int position) {
    if (position <= last_position) return;
    last = Clock::now();
    last_position = position;
    if (!first) {
      first = last;
      first_position = position;
    }
  }
  double seconds() const { return std::chrono::duration<double>(last - *first).count(); }
};

Task<> measure(PortSession& session, ImageTransfer& transfer, std::string device, unsigned baud, bool& ok) {
  LineSettings line;
  line.baud_rate = baud;
  const OpenResult opened = co_await session.open(std::move(device), line);
  if (!opened.ok()) {
    std::fprintf(stderr, "%s\n", opened.text.c_str());
    co_return;
  }
  ok = co_await transfer.run(TransferKind::firmware) == TransferEnd::sent;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const unsigned baud = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
  LoopScheduler scheduler;
  PortSession session(scheduler, make_serial_device(), {});
  CQV5123Doc document;
  OneFile prompts(argv[3]);
  Blocks blocks;
  BackgroundThread background(scheduler);
  ImageTransfer transfer(session.link(), document, prompts, background,
                         {[&](int position) { blocks.moved_to(position); }, [](const std::string&) {},
                          [](const std::string&) {}});
  bool ok = false;
  Flow flow(measure(session, transfer, argv[1], baud, ok));
  scheduler.run_until([&] { return !flow.running(); });
  if (!ok || !blocks.first) return 1;
  // A whole 64 KiB image less one block: the bar's positions are hundredths of it, truncated.
  const double bytes = static_cast<double>(std::filesystem::file_size(argv[3])) *
                       (blocks.last_position - blocks.first_position) / 100.0;
  std::printf("download_rate_%u %.3f of_line\n", baud, bytes / blocks.seconds() / (baud / 10.0));
  return 0;
}
