#include <unistd.h>

#include <filesystem>

#include "link/serial_device.h"
#include "support/device_bench.h"
#include "support/pty_line_posix.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;

class PosixBench : public DeviceBench {
 public:
  SerialDevice& device() override { return *device_; }
  std::string name() const override { return link_; }
  OpenResult open_again() override { return make_serial_device()->open(link_, {}); }
  std::string received(std::size_t count) override { return line_.received(count); }
  void send(std::string_view bytes) override { line_.send(bytes); }
  void stall() override { line_.stall(); }
  void hang_up() override { line_.hang_up(); }
  void plug_in() override { line_.plug_in(); }
  std::uint32_t baud_rate() override { return line_.baud_rate(); }

 private:
  const std::string link_ = fs::temp_directory_path() / ("qv5123-bench-" + std::to_string(getpid()));
  PtyLine line_{link_};
  std::unique_ptr<SerialDevice> device_ = make_serial_device();
};

}  // namespace

std::vector<BenchMaker> system_benches() {
  return {{"Posix", [] { return std::make_unique<PosixBench>(); }}};
}

std::size_t open_handles() {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

}  // namespace qv5123
