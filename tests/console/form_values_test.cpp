#include "console/main_commands.h"
#include "console/startup_reply.h"
#include "console/version_box.h"

namespace qv5123 {
namespace {

TEST(OsdPattern, ShowsOnlySelectionsThatTheListHas) {
  UserDataImage image;
  EXPECT_EQ(osd_pattern_selection(image), 0);
  image.set_entry(634, 1);
  EXPECT_EQ(osd_pattern_selection(image), 1);
  image.set_entry(634, 2);
  EXPECT_EQ(osd_pattern_selection(image), -1);
}

TEST(VersionBox, NumbersAreHeldTo99AndASlotThatIsNotThereIsLeftAlone) {
  UserDataImage image;
  store_version(image, 2, {100, -1, 40});
  EXPECT_EQ(load_version(image, 2), (VersionNumbers{99, 0, 40}));
  const UserDataImage before = image;
  for (const int none : {-1, 3}) {
    store_version(image, none, {1, 2, 3});
    EXPECT_EQ(image, before);
    EXPECT_TRUE(version_traffic(none, {1, 1, 1}).empty());
  }
}

void receive(ReplyBuffer& reply, const std::string& bytes) {
  reply.decode({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

TEST(StartupReply, DropsWhatIsNotCompleteInTime) {
  ReplyBuffer reply;
  StartupReply startup;
  receive(reply, "~01");
  EXPECT_EQ(startup.read(reply), "");
  EXPECT_EQ(startup.stage(), StartupReply::Stage::done);
  EXPECT_EQ(reply.state(), ReplyBuffer::State::idle);
  EXPECT_EQ(reply.index(), 0u);
}

TEST(StartupReply, TakesTheSerialNumberFromBytes18To26) {
  ReplyBuffer reply;
  StartupReply startup(StartupReply::Stage::serial_number);
  receive(reply, "~" + std::string(36, '0') + "515635313233E42D3741^");
  EXPECT_EQ(startup.read(reply), "\r\nLoad Serial_Number ok..");
  EXPECT_EQ(startup.serial_number(), "QV5123ä-7");
}

TEST(StartupReply, DecodesTheLastStageByPosition) {
  ReplyBuffer reply;
  StartupReply startup(StartupReply::Stage::done);
  std::string block;
  for (int i = 0; i < 47; ++i) block += "f00a";
  block += "x123";
  for (int i = 0; i < 15; ++i) block += "00";
  block += "AB";
  block += "7f";
  receive(reply, "~" + block + "^");
  EXPECT_EQ(startup.read(reply), "");
  EXPECT_EQ(startup.values().words[0], 0x00A);
  EXPECT_EQ(startup.values().words[47], 0x123);
  EXPECT_EQ(startup.values().bytes[15], 0xAB);
  EXPECT_EQ(startup.values().table[0], 0x7F);
  EXPECT_EQ(startup.values().table[199], 0);
}

}  // namespace
}  // namespace qv5123
