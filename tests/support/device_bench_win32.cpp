#include "support/bench_client_win32.h"
// Winsock must come first.
#include <windows.h>

#include <cstdint>

#include "link/port_list.h"
#include "link/serial_device.h"
#include "support/device_bench.h"
#include "support/hex_text.h"

namespace qv5123 {
namespace {

class Win32Bench : public DeviceBench {
 public:
  explicit Win32Bench(int port) : name_(comm_device_name(port)) {
    client_.ask("line com" + std::to_string(port));
  }

  SerialDevice& device() override { return *device_; }
  std::string name() const override { return name_; }
  OpenResult open_again() override { return make_serial_device()->open(name_, {}); }
  std::string received(std::size_t count) override {
    return from_hex(client_.ask("received " + std::to_string(count)));
  }
  void send(std::string_view bytes) override { client_.ask("send " + to_hex(bytes)); }
  void stall() override { client_.ask("stall"); }
  void hang_up() override { client_.ask("hang_up"); }
  void plug_in() override { client_.ask("plug_in"); }
  std::uint32_t baud_rate() override {
    return static_cast<std::uint32_t>(std::stoul(client_.ask("baud_rate")));
  }

 private:
  BenchClient client_;
  const std::string name_;
  std::unique_ptr<SerialDevice> device_ = make_serial_device();
};

}  // namespace

std::vector<BenchMaker> system_benches() {
  // One port of each form of name.
  return {{"Win32Com5", [] { return std::make_unique<Win32Bench>(5); }},
          {"Win32Com12", [] { return std::make_unique<Win32Bench>(12); }}};
}

// One by one, because Wine does not keep the count that GetProcessHandleCount() asks for.
std::size_t open_handles() {
  constexpr std::uintptr_t kStep = 4, kEnd = 0x10000;
  std::size_t count = 0;
  DWORD flags = 0;
  for (std::uintptr_t value = kStep; value < kEnd; value += kStep)
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
  return count;
}

}  // namespace qv5123
