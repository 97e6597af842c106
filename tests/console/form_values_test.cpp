#include "console/startup_reply.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

TEST(StartupReply, AnyReplyStandsForTheVersionAndBytes18To26AreTheSerialNumber) {
  ReplyBuffer reply;
  const auto receive = [&reply](const std::string& bytes) {
    reply.decode({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  };
  receive("~" + std::string(ReplyBuffer::kSize + 1, '0') + "^");
  EXPECT_EQ(StartupReply().read(reply), "\r\nLoad Version ok..");
  receive("~" + std::string(36, '0') + "515635313233E42D3741^");
  StartupReply startup(StartupReply::Stage::serial_number);
  EXPECT_EQ(startup.read(reply), "\r\nLoad Serial_Number ok..");
  EXPECT_EQ(startup.serial_number(), "QV5123ä-7");
}

}  // namespace
}  // namespace qv5123
