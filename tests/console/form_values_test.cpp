#include "console/main_commands.h"
#include "console/startup_reply.h"
#include "console/version_box.h"

namespace qv5123 {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> wire(const Traffic& traffic) {
  std::vector<std::string> flushes;
  for (const Batch& batch : traffic) flushes.push_back(frames(batch));
  return flushes;
}

TEST(MainCommands, AreTheseFrames) {
  EXPECT_EQ(frames(osd_key(OsdKey::up)), "@0100*");
  EXPECT_EQ(frames(osd_key(OsdKey::down)), "@0101*");
  EXPECT_EQ(frames(osd_key(OsdKey::left)), "@0102*");
  EXPECT_EQ(frames(osd_key(OsdKey::right)), "@0103*");
  EXPECT_EQ(frames(osd_key(OsdKey::set)), "@0104*");
  EXPECT_EQ(frames(factory_reset()), "@9209*@9222*@93cc*");
  EXPECT_EQ(frames(copy_to_factory()), "@bf00*");
  EXPECT_EQ(frames(ae_info()), "@a201*");
  EXPECT_EQ(frames(awb_info()), "@a501*");
  EXPECT_EQ(frames(osd_pattern(1)), "@c901*");
  EXPECT_EQ(frames(isp_tune_request()), "@be00*");
}

TEST(OsdPattern, ShowsOnlySelectionsThatTheListHas) {
  UserDataImage image;
  EXPECT_EQ(osd_pattern_selection(image), 0);
  image.set_entry(634, 1);
  EXPECT_EQ(osd_pattern_selection(image), 1);
  image.set_entry(634, 2);
  EXPECT_EQ(osd_pattern_selection(image), -1);
}

TEST(VersionBox, KeepsDigitsInSixEntriesPerSlot) {
  UserDataImage image;
  store_version(image, 0, {12, 3, 99});
  store_version(image, 2, {100, -1, 40});
  EXPECT_THAT(std::vector<int>(image.bytes().begin() + 688, image.bytes().begin() + 708),
              ElementsAre(0, 1, 2, 0, 3, 9, 9, 0, 0, 0, 0, 0, 0, 9, 9, 0, 0, 4, 0, 0));
  EXPECT_THAT(load_version(image, 0), ElementsAre(12, 3, 99));
  EXPECT_THAT(load_version(image, 1), ElementsAre(0, 0, 0));
  const UserDataImage before = image;
  store_version(image, 3, {1, 2, 3});
  store_version(image, -1, {1, 2, 3});
  EXPECT_EQ(image, before);
}

TEST(VersionBox, SendsDigitsToTheSlotsRegister) {
  EXPECT_THAT(wire(version_traffic(0, {12, 3, 99})),
              ElementsAre("@cb01*@cb02*", "@cb00*@cb03*", "@cb09*@cb09*"));
  EXPECT_EQ(wire(version_traffic(2, {0, 0, 7}))[2], "@cd00*@cd07*");
  EXPECT_THAT(version_traffic(3, {1, 1, 1}), IsEmpty());
  EXPECT_THAT(version_traffic(-1, {1, 1, 1}), IsEmpty());
}

void receive(ReplyBuffer& reply, const std::string& bytes) {
  reply.decode({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

TEST(StartupReply, TakesTheVersionOnce) {
  ReplyBuffer reply;
  StartupReply startup;
  receive(reply, "~0102^");
  EXPECT_EQ(startup.read(reply), "\r\nLoad Version ok..");
  EXPECT_EQ(startup.stage(), StartupReply::Stage::done);
  EXPECT_EQ(reply.state(), ReplyBuffer::State::idle);
  EXPECT_EQ(startup.read(reply), "");
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
