#include "console/image_transfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/setting_file.h"
#include "support/fake_prompts.h"
#include "support/fake_wire.h"
#include "support/inline_background.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Strings = std::vector<std::string>;

class ImageTransferTest : public testing::Test {
 protected:
  test::FakeWire wire;
  test::TemporaryFolder folder;
  test::FakePrompts user;
  test::InlineBackground work;
  CQV5123Doc doc;
  std::vector<int> bar;
  std::string text;
  std::string console;
  ImageTransfer transfer{wire.link,
                         doc,
                         user,
                         work,
                         {[this](int position) { bar.push_back(position); },
                          [this](const std::string& progress) { text = progress; },
                          [this](const std::string& added) { console += added; }}};
  FlowSet flows;

  std::optional<TransferEnd> end;

  Task<> run(TransferKind kind) { end = co_await transfer.run(kind); }
  void press(TransferKind kind) {
    flows.spawn(run(kind));
    wire.advance(0);
  }
  /// A font of four blocks, up to the letter, the header and the first block.
  void begin_font() {
    user.paths = {folder.write("font.bin", std::string(1024, 'f'))};
    press(TransferKind::font);
    wire.advance(50 + 50 + 50);
  }
  void run_to_end() {
    for (int i = 0; i < 1000 && flows.running(); ++i) wire.advance(50);
    ASSERT_FALSE(flows.running());
    EXPECT_FALSE(transfer.running());
    // Whatever came of it, the wire is free again.
    wire.sender.writes.push_back("|");
    wire.link.send_letter('?');
    wire.advance(100);
    EXPECT_EQ(wire.sender.writes.back(), "?");
  }
  // The writes of the transfer.
  std::vector<std::string> sent() const {
    const auto end = std::find(wire.sender.writes.begin(), wire.sender.writes.end(), "|");
    return {wire.sender.writes.begin(), end};
  }
};

TEST_F(ImageTransferTest, FirmwareFromButtonToChecksum) {
  user.paths = {folder.write("fw.bin", std::string(256, '\x01') + std::string(256, '\x02') + "\x04")};
  press(TransferKind::firmware);
  run_to_end();
  EXPECT_THAT(sent(), ElementsAre("A", std::string("\x03\0", 2), std::string(256, '\x01'),
                                  std::string(256, '\x02'), "\x04" + std::string(255, '\xFF'),
                                  std::string(1, static_cast<char>(3 ^ 4 ^ 0xFF))));
  EXPECT_THAT(bar, ElementsAre(0, 33, 66, 100, 33));
  EXPECT_EQ(user.opens.at(0).filter, "Binary file(*.bin)|*.bin");
  EXPECT_EQ(user.opens.at(0).default_extension, "bin");
  EXPECT_EQ(console, "\r\n< Ready to FIRMWARE >\r\n< FIRMWARE sent: 3 blocks, checksum 0xF8 >");
  EXPECT_EQ(end, TransferEnd::sent);
}

TEST_F(ImageTransferTest, FontEndsWithAFullBarAndTellsSpeed) {
  begin_font();
  wire.advance(50);
  EXPECT_EQ(text, "0.5 of 1.0 KiB, 3.3 KiB/s, 0 s left");
  run_to_end();
  EXPECT_EQ(sent().front(), "C");
  EXPECT_THAT(bar, ElementsAre(0, 25, 50, 75, 100, 100));
  EXPECT_EQ(console.substr(0, 21), "\r\n< Ready to FONT >\r\n");
}

TEST_F(ImageTransferTest, SystemSendsTheChosenSettingFile) {
  doc.setting_file = "remembered.dat";
  user.paths = {folder.write("set.dat", "7 5")};
  user.answers = {Answer::yes};
  press(TransferKind::user_data);
  run_to_end();
  const std::string fives(256, '\x05');
  EXPECT_THAT(sent(), ElementsAre("U", std::string("\x04\0", 2), "\x07" + fives.substr(1), fives, fives,
                                  fives, std::string(1, 4 ^ 7 ^ 5)));
  EXPECT_THAT(bar, ElementsAre(0, 0, 25, 50, 75, 100));
  EXPECT_EQ(console, "\r\nset.dat: 2 numbers of 1024, the rest repeats 5\r\n User data sent..");
  EXPECT_EQ(user.questions.at(0).preferred, Answer::no);
  EXPECT_EQ(doc.user_data.entry(1023), 5);
  EXPECT_EQ(doc.setting_file, "remembered.dat");
}

TEST_F(ImageTransferTest, SystemSendsNoOddFileUnasked) {
  user.paths = {folder.write("regs.txt", "0x0000=0x12\r\n")};
  press(TransferKind::user_data);
  run_to_end();
  EXPECT_THAT(user.questions.at(0).text, HasSubstr("regs.txt: 1 number of 1024, the rest repeats 0"));
  EXPECT_THAT(sent(), ElementsAre("U"));
  EXPECT_FALSE(doc.user_data.loaded()) << "the image is what it was";
}

TEST_F(ImageTransferTest, SystemWithoutAFileSendsThePresentImage) {
  doc.user_data.set_entry(0, 3);
  press(TransferKind::user_data);
  run_to_end();
  EXPECT_EQ(user.opens.at(0).title, "Choose the user data to send: Cancel sends the present image");
  EXPECT_EQ(sent().at(2), "\x03" + std::string(255, '\0'));
  EXPECT_EQ(end, TransferEnd::sent);
}

TEST_F(ImageTransferTest, NothingFollowsTheLetterWithoutAGoodFile) {
  std::ofstream(folder.path() / "large.bin") << std::string(65537, 'x');
  user.paths = {std::nullopt, folder.path(), folder.path() / "large.bin", folder.path() / "gone.dat"};
  press(TransferKind::font);
  press(TransferKind::font);
  press(TransferKind::firmware);
  press(TransferKind::user_data);
  run_to_end();
  EXPECT_THAT(sent(), ElementsAre("C", "C", "A", "U"));
  ASSERT_EQ(user.messages.size(), 3u);
  EXPECT_EQ(user.messages[0].text, "file open error");
  EXPECT_EQ(user.messages[1].text,
            path_text(folder.path() / "large.bin") + " has 65537 bytes. An image has at most 65280 bytes.");
  EXPECT_THAT(user.messages[2].text, HasSubstr("gone.dat"));
  EXPECT_THAT(console, HasSubstr("< FONT not sent: the chip still waits for it >"));
  EXPECT_THAT(console, HasSubstr(path_text(folder.path())));
  EXPECT_FALSE(doc.user_data.loaded());
  EXPECT_EQ(end, TransferEnd::not_sent);
}

TEST_F(ImageTransferTest, CancelEndsAsTheChipCanTake) {
  begin_font();
  transfer.cancel();
  run_to_end();
  const std::string filler(256, '\xFF');
  EXPECT_EQ(sent()[2], std::string(256, 'f'));
  EXPECT_EQ(sent().size(), 7u) << "the announced four blocks";
  EXPECT_EQ(sent()[5], filler);
  EXPECT_EQ(sent()[6], std::string(1, static_cast<char>(~4)));
  EXPECT_EQ(bar.back(), 0);
  EXPECT_THAT(console, testing::EndsWith("checksum: the chip expects commands again >"));
  EXPECT_EQ(end, TransferEnd::cancelled);
  transfer.cancel();  // nothing runs
}

TEST_F(ImageTransferTest, CancelTwiceStopsAndSaysWhatTheChipExpects) {
  user.paths = {folder.write("font.bin", std::string(2048, 'f'))};
  press(TransferKind::font);
  wire.advance(50 + 50 + 50);
  transfer.cancel();
  wire.advance(100);
  const std::size_t so_far = wire.sender.writes.size();
  ASSERT_LT(so_far, 10u);
  transfer.cancel();
  run_to_end();
  const std::size_t blocks = sent().size() - 2;
  EXPECT_THAT(console, testing::EndsWith("still expects " + std::to_string(8 - blocks) +
                                         " blocks of 256 bytes and a checksum >"));
}

TEST_F(ImageTransferTest, ALineThatStandsStillIsNoLostPort) {
  begin_font();
  wire.advance(50);
  wire.sender.cuts_short = true;
  wire.advance(50);
  wire.sender.cuts_short = false;
  run_to_end();
  EXPECT_EQ(sent().size(), 5u);
  EXPECT_THAT(console, testing::EndsWith("< FONT broken off after 2 of 4 blocks: a write was cut short, the "
                                         "chip still expects 385 bytes >"));
  EXPECT_EQ(end, TransferEnd::cut_short);

  console.clear();
  wire.sender.cuts_short = true;
  press(TransferKind::font);
  wire.advance(100);
  wire.link.connection_changed();  // it is found gone a little later
  wire.sender.cuts_short = false;
  run_to_end();
  EXPECT_EQ(console, "\r\n< FONT not sent: the port is closed or lost >");
}

TEST_F(ImageTransferTest, AChipThatWasAwayGetsNothingMoreAndNobodyIsWaitedFor) {
  user.hesitates = true;
  begin_font();
  wire.link.connection_changed();
  wire.advance(0);
  EXPECT_EQ(end, TransferEnd::lost) << "though the user has not answered";
  EXPECT_THAT(console, testing::EndsWith("< FONT broken off before the image: the port was closed or lost, "
                                         "the chip still expects an image >"));
  press(TransferKind::font);
  wire.advance(50);
  transfer.cancel();
  wire.advance(200);
  EXPECT_EQ(end, TransferEnd::cancelled);

  wire.sender.writes.clear();
  user.hesitates = false;
  begin_font();
  transfer.cancel();
  wire.link.connection_changed();
  run_to_end();
  EXPECT_EQ(end, TransferEnd::lost);
  EXPECT_LE(sent().size(), 4u) << "no block that fills the image up";
}

TEST_F(ImageTransferTest, ACountThatWrapsIsAskedAbout) {
  const auto path = folder.write("wraps.bin", std::string(65281, 'x'));
  user.paths = {path, path};
  user.answers = {Answer::no, Answer::yes};
  press(TransferKind::font);
  press(TransferKind::font);
  run_to_end();
  EXPECT_THAT(sent(), ElementsAre("C", "C", std::string(2, '\0'), std::string(1, '\0')));
  EXPECT_THAT(user.questions.at(0).text, HasSubstr("wraps.bin has 65281 bytes, 65280 fit"));
  EXPECT_THAT(console, HasSubstr("< FONT sent: 0 blocks, checksum 0x00 >"));
}

/// The same where the wire is kept for a chip that was left waiting.
class WaitingChipTest : public ImageTransferTest {
 protected:
  Strings told;
  ImageTransfer keeping{wire.link, doc, user, work, view()};

  TransferView view() {
    TransferView view{[](int) {}, [](const std::string&) {}, [](const std::string&) {}};
    view.tell = [this](bool failed, const std::string& text) { told.push_back((failed ? "!" : "") + text); };
    view.keeps_waiting = true;
    return view;
  }
  Task<> run_keeping(TransferKind kind) { end = co_await keeping.run(kind); }
};

TEST_F(WaitingChipTest, NothingReachesItUntilItsWaitingIsEnded) {
  flows.spawn(run_keeping(TransferKind::firmware));  // and no file is chosen
  wire.advance(100);
  EXPECT_EQ(told, Strings{"!FIRMWARE not sent: the chip still waits for it"});
  EXPECT_EQ(keeping.waiting_text(), "FIRMWARE: the chip still expects an image");
  wire.link.send(Batch{{0x20, 1}});
  wire.advance(1000);
  EXPECT_EQ(wire.sender.writes, Strings{"A"});
  flows.spawn(keeping.end_waiting());
  wire.advance(1000);
  EXPECT_EQ(wire.sender.writes, (Strings{"A", std::string(2, '\0'), "\xFF", "@2001*"}));
  EXPECT_EQ(told.back(), "FIRMWARE ended with a wrong checksum: the chip expects commands again");
  EXPECT_FALSE(keeping.waiting());
}

TEST_F(WaitingChipTest, AfterAnUnplugItIsSaidAndTheRestCanStillBeSent) {
  user.paths = {folder.write("font.bin", std::string(1024, 'f'))};
  flows.spawn(run_keeping(TransferKind::font));
  wire.advance(50 + 50 + 50 + 49);
  wire.sender.connected = false;
  wire.link.connection_changed();
  wire.advance(1000);
  EXPECT_EQ(told.back(),
            "!FONT broken off after 1 of 4 blocks: the port was closed or lost, the chip still "
            "expects 3 blocks of 256 bytes and a checksum");
  flows.spawn(keeping.end_waiting());
  wire.advance(100);
  EXPECT_EQ(told.back(), "!FONT not ended: the chip still expects 3 blocks of 256 bytes and a checksum");
  wire.sender.connected = true;
  wire.sender.writes.clear();
  flows.spawn(keeping.end_all(std::chrono::seconds(2)));
  wire.advance(2000);
  EXPECT_EQ(wire.sender.writes.size(), 4u);
  EXPECT_FALSE(keeping.waiting() || flows.running());
}

}  // namespace
}  // namespace qv5123
