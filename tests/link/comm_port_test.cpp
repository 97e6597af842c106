#include "link/comm_port.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "link/in_process_device.h"
#include "support/poll_until.h"

namespace qv5123 {
namespace {

/// Counts the port's events and lets the test wait for them.
struct PortOnScript {
  explicit PortOnScript(std::chrono::milliseconds patience = {})
      : port(take_device(), buffer,
             {[this] { count(received); }, [] {},
              [this](const std::string& text) {
                troubles.push_back(text);
                count(trouble);
              }},
             {CCommPort::ReceiveMode::queue, patience}) {}

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
  int trouble = 0;
  std::vector<std::string> troubles;
  CCommPort port;
};

TEST(CCommPort, EveryWritePaysThePacingAndEmptiesTheCommandBuffer) {
  PortOnScript on;
  ASSERT_TRUE(on.port.open("script", {}).ok());
  on.buffer.append_register_write(0xAB, 0x0F);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(on.port.write(on.buffer.bytes()), 6u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
  on.buffer.append_register_write(1, 2);
  on.port.write({}, Pacing::bulk);
  EXPECT_TRUE(on.buffer.bytes().empty()) << "a write of nothing empties it too";
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
  PortOnScript on(std::chrono::seconds(10));
  ASSERT_TRUE(on.port.open("script", {}).ok());
  std::string sent(40000, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7 + i / 256);
  on.receive(sent);
  std::string taken;
  std::uint8_t byte = 0;
  test::poll_until([&] {
    while (on.port.receive_queue().get(byte)) taken += static_cast<char>(byte);
    return taken.size() >= sent.size();
  });
  EXPECT_EQ(taken, sent) << "several times round the queue";
  EXPECT_EQ(on.trouble, 0);
}

}  // namespace
}  // namespace qv5123
