#include "link/comm_port.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <deque>
#include <mutex>

namespace qv5123 {
namespace {

/// A device that plays what the test puts into it.
class ScriptedDevice : public SerialDevice {
 public:
  OpenResult open(const std::string&, const LineSettings&) override {
    closed_ = false;
    return {};
  }
  void close() override {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
  }
  Wait wait() override {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || lost_ || !received_.empty(); });
    if (closed_) return Wait::closed;
    return received_.empty() ? Wait::lost : Wait::received;
  }
  std::size_t read(std::span<std::uint8_t> buffer) override {
    const std::lock_guard lock(mutex_);
    std::size_t count = 0;
    while (count < buffer.size() && !received_.empty()) {
      buffer[count++] = received_.front();
      received_.pop_front();
    }
    return count;
  }
  std::size_t write(std::span<const std::uint8_t> bytes) override {
    sent.append(bytes.begin(), bytes.end());
    return bytes.size();
  }

  void receive(const std::string& bytes) {
    const std::lock_guard lock(mutex_);
    received_.insert(received_.end(), bytes.begin(), bytes.end());
    changed_.notify_all();
  }
  void lose() {
    const std::lock_guard lock(mutex_);
    lost_ = true;
    changed_.notify_all();
  }

  std::string sent;

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::uint8_t> received_;
  bool closed_ = true;
  bool lost_ = false;
};

/// Counts the port's events and lets the test wait for them.
struct PortOnScript {
  explicit PortOnScript(CCommPort::Options options = {CCommPort::ReceiveMode::queue,
                                                      std::chrono::milliseconds(0)})
      : port(take_device(), buffer,
             {[this] { count(received); }, [this] { count(lost); },
              [this](const std::string& text) {
                troubles.push_back(text);
                count(trouble);
              }},
             options) {}

  void wait_for(const int& counter, int wanted) {
    std::unique_lock lock(mutex);
    ASSERT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), [&] { return counter >= wanted; }));
  }
  void count(int& counter) {
    const std::lock_guard lock(mutex);
    ++counter;
    changed.notify_all();
  }
  std::unique_ptr<SerialDevice> take_device() {
    auto owned = std::make_unique<ScriptedDevice>();
    device = owned.get();
    return owned;
  }

  ScriptedDevice* device = nullptr;
  CommandBuffer buffer;
  std::mutex mutex;
  std::condition_variable changed;
  int received = 0;
  int lost = 0;
  int trouble = 0;
  std::vector<std::string> troubles;
  CCommPort port;
};

TEST(RingQueue, HoldsOneLessThanItsSlots) {
  RingQueue queue;
  std::uint8_t byte = 0;
  EXPECT_FALSE(queue.get(byte));
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 8191; ++i) ASSERT_TRUE(queue.put(static_cast<std::uint8_t>(i)));
    EXPECT_FALSE(queue.put(1));
    EXPECT_EQ(queue.count(), 8191u);
    for (int i = 0; i < 8191; ++i) {
      ASSERT_TRUE(queue.get(byte));
      ASSERT_EQ(byte, static_cast<std::uint8_t>(i));
    }
  }
}

TEST(CCommPort, EveryWritePaysThePacingAndEmptiesTheCommandBuffer) {
  PortOnScript on;
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.buffer.append_register_write(0xAB, 0x0F);
  EXPECT_EQ(on.buffer.fill_index(), 6u);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(on.port.write(on.buffer.bytes()), 6u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
  EXPECT_EQ(on.buffer.fill_index(), 0u);
  on.buffer.append_register_write(1, 2);
  on.port.write({}, Pacing::bulk);
  EXPECT_EQ(on.buffer.fill_index(), 0u) << "a write of nothing empties it too";
  EXPECT_EQ(on.device->sent, "@ab0f*");
}

TEST(CCommPort, AReadThatDoesNotFitWithRoomToSpareIsLostWhole) {
  PortOnScript on;
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.device->receive(std::string(2048 * 3, 'a') + std::string(2047, 'b'));
  on.wait_for(on.received, 4);
  EXPECT_EQ(on.port.receive_queue().count(), 8191u) << "2047 bytes into 2048 free slots";
  on.device->receive("c");
  on.wait_for(on.trouble, 1);
  EXPECT_EQ(on.troubles, std::vector<std::string>{"m_QueueRead FULL!"});
  EXPECT_EQ(on.port.receive_queue().count(), 8191u);
}

TEST(CCommPort, WaitsForTheConsumerBeforeItLosesBytes) {
  PortOnScript on({CCommPort::ReceiveMode::queue, std::chrono::seconds(10)});
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.device->receive(std::string(40000, 'x'));
  std::size_t taken = 0;
  std::uint8_t byte = 0;
  while (taken < 40000) {
    if (on.port.receive_queue().get(byte)) ++taken;
  }
  EXPECT_EQ(on.trouble, 0);
}

TEST(CCommPort, QueueSurvivesReconnectAndLossIsTold) {
  PortOnScript on;
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.device->receive("abc");
  on.wait_for(on.received, 1);
  on.port.close();
  EXPECT_EQ(on.port.write({}), 0u);
  ASSERT_TRUE(on.port.open("script", {}).ok());
  EXPECT_EQ(on.port.receive_queue().count(), 3u);
  on.device->lose();
  on.wait_for(on.lost, 1);
  on.port.close();
}

TEST(CCommPort, RawCaptureStopsAtItsBuffersEnd) {
  PortOnScript on({CCommPort::ReceiveMode::raw_capture, std::chrono::milliseconds(0)});
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.device->receive(std::string(5000, 'r'));
  on.device->lose();
  on.wait_for(on.lost, 1);
  on.port.close();
  EXPECT_EQ(on.port.raw_capture().size(), CCommPort::kRawCaptureSize);
  EXPECT_EQ(on.received, 0);
}

}  // namespace
}  // namespace qv5123
