#include "link/in_process_device.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/line_settings.h"

namespace qv5123 {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string read_all(SerialDevice& device) {
  Bytes buffer(64);
  const std::size_t count = device.read(buffer);
  return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count)};
}

TEST(InProcessDevice, ALineThatIsNotUpLosesWhatIsSentToIt) {
  InProcessDevice device([](std::span<const std::uint8_t>) {});
  device.deliver(Bytes{'a'});
  ASSERT_TRUE(device.open("any", {}).ok());
  EXPECT_EQ(read_all(device), "");
  device.deliver(Bytes{'b'});
  device.hang_up();
  device.deliver(Bytes{'c'});
  device.plug_in();
  device.deliver(Bytes{'d'});
  EXPECT_EQ(device.wait(), SerialDevice::Wait::received);
  EXPECT_EQ(read_all(device), "b") << "only what came before the cable was pulled";
  EXPECT_EQ(device.wait(), SerialDevice::Wait::lost) << "plugging in does not revive what was open";
}

TEST(InProcessDevice, APacedLineHandsBytesOverInPiecesOfItsSettings) {
  std::vector<std::size_t> pieces, paced;
  std::uint32_t rate = 0;
  InProcessDevice device([&](std::span<const std::uint8_t> bytes) { pieces.push_back(bytes.size()); },
                         [&](std::size_t bytes, const LineSettings& settings) {
                           paced.push_back(bytes);
                           rate = settings.baud_rate;
                           return std::chrono::nanoseconds(0);
                         });
  ASSERT_TRUE(device.open("any", {.baud_rate = 9600}).ok());
  EXPECT_EQ(device.write(Bytes(40)), 40u);
  EXPECT_EQ(pieces, (std::vector<std::size_t>{16, 16, 8}));
  EXPECT_EQ(paced, pieces);
  EXPECT_EQ(rate, 9600u);
}

}  // namespace
}  // namespace qv5123
