#include "console/startup_reply.h"

#include <gtest/gtest.h>

#include "console/version_box.h"

namespace qv5123 {
namespace {

TEST(VersionBox, NumbersAreHeldTo99AndASlotThatIsNotThereIsLeftAlone) {
  UserDataImage image;
  store_version(image, 2, {100, -1, 40});
  const UserDataImage before = image;
  for (const int none : {-1, 3}) store_version(image, none, {1, 2, 3});
  EXPECT_EQ(image, before);
  EXPECT_EQ(load_version(image, 2), (VersionNumbers{99, 0, 40}));
  EXPECT_TRUE(version_traffic(image, 3).empty());
  image.set_entry(701, 200);
  store_version(image, 2, load_version(image, 2));
  EXPECT_EQ(image.entry(701), 200) << "no digit, and not touched";
}

void receive(ReplyBuffer& reply, const std::string& bytes) {
  reply.decode({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

TEST(StartupReply, AnyReplyStandsForTheVersion) {
  ReplyBuffer reply;
  receive(reply, "~" + std::string(ReplyBuffer::kSize + 1, '0') + "^");
  EXPECT_EQ(StartupReply().read(reply), "\r\nLoad Version ok..");
}

TEST(StartupReply, TakesTheSerialNumberFromBytes18To26) {
  ReplyBuffer reply;
  StartupReply startup(StartupReply::Stage::serial_number);
  receive(reply, "~" + std::string(36, '0') + "515635313233E42D3741^");
  EXPECT_EQ(startup.read(reply), "\r\nLoad Serial_Number ok..");
  EXPECT_EQ(startup.serial_number(), "QV5123ä-7");
}

}  // namespace
}  // namespace qv5123
