#include "link/comm_port.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "link/in_process_device.h"

namespace qv5123 {
namespace {

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
  void receive(const std::string& bytes) {
    device->deliver({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  }
  std::unique_ptr<SerialDevice> take_device() {
    auto owned = std::make_unique<InProcessDevice>(
        [this](std::span<const std::uint8_t> bytes) { sent.append(bytes.begin(), bytes.end()); });
    device = owned.get();
    return owned;
  }

  InProcessDevice* device = nullptr;
  std::string sent;
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
  EXPECT_EQ(on.sent, "@ab0f*");
}

TEST(CCommPort, AReadThatDoesNotFitWithRoomToSpareIsLostWhole) {
  PortOnScript on;
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.receive(std::string(2048 * 3, 'a') + std::string(2047, 'b'));
  on.wait_for(on.received, 4);
  EXPECT_EQ(on.port.receive_queue().count(), 8191u) << "2047 bytes into 2048 free slots";
  on.receive("c");
  on.wait_for(on.trouble, 1);
  EXPECT_EQ(on.troubles, std::vector<std::string>{"m_QueueRead FULL!"});
  EXPECT_EQ(on.port.receive_queue().count(), 8191u);
}

TEST(CCommPort, WaitsForTheConsumerBeforeItLosesBytes) {
  PortOnScript on({CCommPort::ReceiveMode::queue, std::chrono::seconds(10)});
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.receive(std::string(40000, 'x'));
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
  on.receive("abc");
  on.wait_for(on.received, 1);
  on.port.close();
  EXPECT_EQ(on.port.write({}), 0u);
  ASSERT_TRUE(on.port.open("script", {}).ok());
  EXPECT_EQ(on.port.receive_queue().count(), 3u);
  on.device->hang_up();
  on.wait_for(on.lost, 1);
  on.port.close();
}

TEST(CCommPort, RawCaptureStopsAtItsBuffersEnd) {
  PortOnScript on({CCommPort::ReceiveMode::raw_capture, std::chrono::milliseconds(0)});
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.receive(std::string(5000, 'r'));
  on.device->hang_up();
  on.wait_for(on.lost, 1);
  on.port.close();
  EXPECT_EQ(on.port.raw_capture().size(), CCommPort::kRawCaptureSize);
  EXPECT_EQ(on.received, 0);
}

}  // namespace
}  // namespace qv5123
