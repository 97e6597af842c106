#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>

#include "link/in_process_device.h"
#include "support/device_bench.h"
#include "support/poll_until.h"

namespace qv5123 {
namespace {

using Wait = SerialDevice::Wait;

constexpr std::size_t kBeyondAllBuffers = 1'000'000;

class InProcessBench : public DeviceBench {
 public:
  SerialDevice& device() override { return device_; }
  std::string name() const override { return "line"; }
  OpenResult open_again() override { return device_.open(name(), {}); }
  std::string received(std::size_t count) override {
    std::unique_lock lock(mutex_);
    arrived_.wait_for(lock, std::chrono::seconds(30), [&] { return received_.size() >= count; });
    return std::exchange(received_, {});
  }
  void send(std::string_view bytes) override {
    device_.deliver({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  }
  void stall() override { stalled_ = true; }
  void hang_up() override { device_.hang_up(); }
  void plug_in() override {
    stalled_ = false;
    device_.plug_in();
  }
  std::uint32_t baud_rate() override { return device_.settings().baud_rate; }

 private:
  void take(std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    received_.append(bytes.begin(), bytes.end());
    arrived_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::string received_;
  std::atomic<bool> stalled_ = false;
  InProcessDevice device_{[this](std::span<const std::uint8_t> bytes) { take(bytes); },
                          [this](std::size_t, const LineSettings&) -> std::chrono::nanoseconds {
                            return std::chrono::hours(stalled_ ? 1 : 0);
                          }};
};

std::vector<BenchMaker> all_benches() {
  std::vector<BenchMaker> benches = system_benches();
  benches.push_back({"InProcess", [] { return std::make_unique<InProcessBench>(); }});
  return benches;
}

std::span<const std::uint8_t> bytes_of(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Every byte value, in an order that shows a lost or swapped piece.
std::string pattern(std::size_t size) {
  std::string text(size, '\0');
  for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 256);
  return text;
}

class SerialDeviceConformance : public testing::TestWithParam<BenchMaker> {
 protected:
  void open(const LineSettings& settings = {}) {
    const OpenResult result = device_.open(bench_->name(), settings);
    ASSERT_TRUE(result.ok()) << result.text;
  }
  std::size_t write(std::string_view text) { return device_.write(bytes_of(text)); }
  /// One read of the size the watcher uses.
  std::string read() {
    std::string buffer(2048, '\0');
    buffer.resize(device_.read({reinterpret_cast<std::uint8_t*>(buffer.data()), buffer.size()}));
    return buffer;
  }
  std::string read_all(std::size_t count) {
    auto all = std::async(std::launch::async, [&] {
      std::string bytes;
      while (bytes.size() < count && device_.wait() == Wait::received) bytes += read();
      return bytes;
    });
    // Of bytes that were lost nothing else ends the wait.
    if (all.wait_for(test::kInVain) == std::future_status::timeout) device_.close();
    return all.get();
  }

  std::unique_ptr<DeviceBench> bench_ = GetParam().make();
  SerialDevice& device_ = bench_->device();
};

TEST_P(SerialDeviceConformance, EveryByteValuePassesWholeAndInOrderBothWays) {
  open();
  EXPECT_EQ(write(pattern(3000)), 3000u);
  EXPECT_EQ(bench_->received(3000), pattern(3000));
  bench_->send(pattern(9000));
  EXPECT_EQ(read_all(9000), pattern(9000)) << "a burst beyond one read";
  EXPECT_EQ(read(), "") << "an empty queue gives 0 at once";
  EXPECT_EQ(write("@ab0f*"), 6u);
  EXPECT_EQ(write(""), 0u);
  EXPECT_EQ(write("U"), 1u);
  EXPECT_EQ(bench_->received(7), "@ab0f*U");
}

TEST_P(SerialDeviceConformance, WaitWakesForEachByteThatComesWhileItWaits) {
  open();
  std::atomic<int> seen = 0;
  std::thread watcher([&] {
    while (device_.wait() == Wait::received) {
      bench_->device().write(bytes_of(read()));  // tells the test that the byte was seen
      ++seen;
    }
  });
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) {
    bench_->send("x");
    EXPECT_EQ(bench_->received(1), "x");
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5))
      << "found by looking, not woken";
  device_.close();
  watcher.join();
  EXPECT_EQ(seen, 20);
}

TEST_P(SerialDeviceConformance, TheLineRunsAtTheSpeedAskedForAfterEachOpen) {
  for (const std::uint32_t rate : {2400u, 38400u, 115200u, 19200u}) {
    open({.baud_rate = rate});
    EXPECT_EQ(bench_->baud_rate(), rate);
    device_.close();
  }
}

TEST_P(SerialDeviceConformance, ImpossibleSettingsAreRefusedAndLeaveThePortFree) {
  const std::pair<LineSettings, std::string> cases[] = {
      {{.baud_rate = 0}, "a baud rate of 0 is none"},
      {{.data_bits = 9}, "9 data bits are not between 5 and 8"},
      {{.stop_bits = 3}, "stop bit code 3 is not between 0 and 2"},
      {{.parity = 5}, "parity code 5 is not between 0 and 4"}};
  for (const auto& [settings, fault] : cases) {
    const OpenResult result = device_.open(bench_->name(), settings);
    EXPECT_EQ(result.error, OpenError::bad_settings);
    EXPECT_EQ(result.text, "The port " + bench_->name() + " cannot be set up as asked: " + fault +
                               ". Change the port's settings.");
  }
  open();
}

TEST_P(SerialDeviceConformance, ASecondOpenIsRefusedAsBusyAndDisturbsNothing) {
  open();
  const OpenResult result = bench_->open_again();
  EXPECT_EQ(result.error, OpenError::busy);
  EXPECT_NE(result.text.find("The port " + bench_->name() + " is in use by "), std::string::npos)
      << result.text;
  EXPECT_EQ(write("A"), 1u);
  EXPECT_EQ(bench_->received(1), "A");
}

TEST_P(SerialDeviceConformance, CloseReleasesAWaitAndTheDeviceOpensAgain) {
  for (int i = 0; i < 20; ++i) {
    open();
    std::thread watcher([&] { EXPECT_EQ(device_.wait(), Wait::closed); });
    device_.close();
    watcher.join();
  }
  EXPECT_EQ(device_.wait(), Wait::closed);
  EXPECT_EQ(write("A"), 0u);
  EXPECT_EQ(read(), "");
  open();
  EXPECT_EQ(write("A"), 1u);
  EXPECT_EQ(bench_->received(1), "A");
}

TEST_P(SerialDeviceConformance, CloseOrLossEndsAWriteThatTheOtherEndDoesNotTake) {
  for (const bool lost : {false, true}) {
    open({.baud_rate = 38400});
    bench_->stall();
    std::atomic<std::size_t> written = kBeyondAllBuffers;
    std::thread writer([&] { written = write(pattern(kBeyondAllBuffers)); });
    lost ? bench_->hang_up() : device_.close();
    writer.join();
    EXPECT_LT(written, kBeyondAllBuffers);
    if (!lost) {
      bench_->hang_up();
      bench_->plug_in();
    }
  }
}

TEST_P(SerialDeviceConformance, AWriteThatWaitsAsksWhetherToGoOnAndTellsWhatHasLeft) {
  open({.baud_rate = 38400});
  bench_->stall();
  std::vector<std::size_t> asked;
  const auto keep_on = [&](std::size_t sent) {
    asked.push_back(sent);
    return asked.size() < 3 || asked.end()[-1] != asked.end()[-3];
  };
  const std::size_t written = device_.write(bytes_of(pattern(kBeyondAllBuffers)), keep_on);
  EXPECT_LT(written, kBeyondAllBuffers);
  ASSERT_FALSE(asked.empty());
  EXPECT_LE(asked.back(), kBeyondAllBuffers);
  EXPECT_TRUE(std::ranges::is_sorted(asked));
  device_.close();
}

TEST_P(SerialDeviceConformance, AWriteOfABlockWaitsAtTheDefaultRateTooWhereADriverEndsItInTime) {
  constexpr int kLongerThanItsTimeout = 5;
  open();
  bench_->stall();
  int asked = 0;
  const auto fill = [&](std::size_t) { return ++asked < 2; };
  EXPECT_LT(device_.write(bytes_of(pattern(kBeyondAllBuffers)), fill), kBeyondAllBuffers);
  asked = 0;
  const auto patient = [&](std::size_t) { return ++asked < kLongerThanItsTimeout; };
  const std::size_t written = device_.write(bytes_of(pattern(256)), patient);
  // Where what was filled in could be dropped, the block found room.
  EXPECT_TRUE(written == 256 || asked == kLongerThanItsTimeout) << written << " sent, " << asked << " asked";
  device_.close();
}

TEST_P(SerialDeviceConformance, ALostDeviceIsNoticedAndOpensAgainWhenItIsBack) {
  open();
  std::thread watcher([&] { EXPECT_EQ(device_.wait(), Wait::lost); });
  bench_->hang_up();
  watcher.join();
  EXPECT_EQ(write("A"), 0u);
  EXPECT_EQ(read(), "");
  device_.close();

  const OpenResult missing = device_.open(bench_->name(), {});
  EXPECT_EQ(missing.error, OpenError::not_found);
  EXPECT_EQ(missing.text,
            "There is no port " + bench_->name() + ". Plug the board in, or choose another port.");
  bench_->plug_in();
  open();
  EXPECT_EQ(write("B"), 1u);
  EXPECT_EQ(bench_->received(1), "B") << "what was not sent before the loss is not sent after it";
}

TEST_P(SerialDeviceConformance, OpeningAndClosingLeaksNothing) {
  const auto cycle = [&] {
    open();
    std::thread watcher([&] { device_.wait(); });
    EXPECT_EQ(write("A"), 1u);
    bench_->received(1);
    device_.close();
    watcher.join();
    EXPECT_FALSE(device_.open(bench_->name(), {.baud_rate = 0}).ok());
  };
  constexpr std::size_t kCycles = 50;
  constexpr std::size_t kOfTheThreads = 10;  // what a thread library may keep of the watchers
  cycle();                                   // what the first use sets up for good does not count
  const std::size_t before = open_handles();
  for (std::size_t i = 0; i < kCycles; ++i) cycle();
  EXPECT_GT(before, 0u);
  EXPECT_LT(open_handles(), before + kOfTheThreads) << "one left at each cycle would make " << kCycles;
}

INSTANTIATE_TEST_SUITE_P(All, SerialDeviceConformance, testing::ValuesIn(all_benches()),
                         [](const auto& bench) { return bench.param.name; });

}  // namespace
}  // namespace qv5123
