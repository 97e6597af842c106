#include "registers/register_desk.h"

#include "registers/hex_edit.h"
#include "registers/register_desk_bench.h"
#include "registers/register_file.h"

namespace qv5123 {
namespace {

using RegisterDeskTest = test::RegisterDeskTest;

/// 256 registers of one category on a chip that takes its time.
class RegisterLatencyTest : public RegisterDeskTest, public testing::WithParamInterface<int> {
 protected:
  static constexpr int kRegisters = 256;

  RegisterLatencyTest() {
    chip_.latency = GetParam();
    std::u16string description = u"x\n<category catname=\"C\">\n";
    for (int i = 0; i < kRegisters; ++i) {
      chip_.values[0x800 + i] = value_of(i);
      description += u"<reg regname=\"r\" addr=\"" + hex_text(0xF800 + i, 4) + u"\" write=\"W\">\n</reg>\n";
    }
    open(description);
  }
  static int value_of(int reg) { return (reg * 37 + 11) & 0xFF; }
  int wrong() const {
    int count = 0;
    for (int i = 0; i < kRegisters; ++i) count += stored(static_cast<std::size_t>(i)) != value_of(i);
    return count;
  }
  /// Until the buttons are live again; four seconds for each register should do.
  void run_to_the_end() {
    for (int s = 0; s < 1024 && view_.buttons.stop; ++s) wire_.advance(1000);
    EXPECT_FALSE(view_.buttons.stop);
  }
};

TEST_P(RegisterLatencyTest, LoadAllGetsEveryValueRight) {
  desk_->load_all();
  run_to_the_end();
  EXPECT_EQ(wrong(), 0);
  EXPECT_EQ(host_.last_status(), "Load All From ISP: 256 registers read");
}

TEST_P(RegisterLatencyTest, ACategoryGetsEveryValueRightWhereAnswersAreLost) {
  chip_.loses_every = 7;
  desk_->load_category();
  run_to_the_end();
  EXPECT_EQ(wrong(), 0);
}

TEST_P(RegisterLatencyTest, RowsSteppedThroughQuicklyShowTheirOwnValues) {
  for (int row = 1; row < kRegisters; ++row) {
    desk_->select_row(row);
    wire_.advance(row % 3 == 0 ? 400 : 37);
  }
  wire_.advance(4000);
  EXPECT_EQ(stored(kRegisters - 1), value_of(kRegisters - 1));
  for (int i = 0; i < kRegisters; ++i) {
    const int known = stored(static_cast<std::size_t>(i));
    EXPECT_TRUE(known == -1 || known == value_of(i)) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Milliseconds, RegisterLatencyTest, testing::Values(20, 140, 300, 600, 1000));

TEST_F(RegisterDeskTest, ALateAnswerIsNeitherAnotherAddressesNorOverwritesWhatIsTyped) {
  open_and_read();
  desk_->select_row(1);
  wire_.advance(55);
  desk_->type_address(u"0x0000");
  wire_.advance(2000);
  EXPECT_EQ(chip_.requests, std::vector<int>{0x801});
  EXPECT_EQ(sheet().value_text(), u"") << "of the address before";

  chip_.latency = 700;
  desk_->select_row(2);
  wire_.advance(400);
  EXPECT_EQ(sheet().value_text(), u"") << "the value of the row before is not this one's";
  desk_->type_value(u"0x77");
  wire_.advance(2000);
  EXPECT_EQ(sheet().value_text(), u"0x77");
}

TEST_F(RegisterDeskTest, AnAddressWithoutAnAnswerShowsNoValueAndSaysSo) {
  open_and_read();
  chip_.silent = true;
  desk_->select_row(1);
  wire_.advance(1900);
  EXPECT_EQ(host_.last_status(), "0xF801: no answer");
  EXPECT_EQ(sheet().value_text(), u"");
  chip_.silent = false;
  chip_.damaged[0x801] = "~3G^";
  desk_->read();
  wire_.advance(300);
  EXPECT_EQ(host_.last_status(), "0xF801: the answer was damaged on the line");
  EXPECT_EQ(stored(1), -1);
  desk_->read();
  wire_.advance(300);
  EXPECT_EQ(host_.last_status(), "0xF801: answered");
  EXPECT_EQ(sheet().value_cell(1), u"0x3C");

  wire_.sender.connected = false;
  host_.statuses.clear();
  desk_->read();
  wire_.advance(2000);
  EXPECT_TRUE(host_.statuses.empty()) << "of a port that is gone the main form tells";
}

TEST_F(RegisterDeskTest, AValueThatIsNotKnownIsAskedAboutBeforeItIsWritten) {
  open_and_read();
  desk_->type_address(u"0xFA20");
  host_.user.answers = {Answer::no, Answer::yes};
  desk_->write();
  wire_.advance(200);
  EXPECT_TRUE(wire_.sender.writes.empty());
  EXPECT_EQ(host_.user.questions.at(0).text,
            "0xFA20 has no value yet: none was read or typed.\nWrite 0xFF to it?");
  desk_->write();
  desk_->type_value(u"0x12");
  desk_->write();
  wire_.advance(200);
  EXPECT_EQ(wire_.sender.writes, (std::vector<std::string>{"@920a*@9220*@93ff*", "@920a*@9220*@9312*"}));
  EXPECT_EQ(host_.user.questions.size(), 2u);

  host_.user.hesitates = true;
  host_.user.answers = {Answer::yes};
  desk_->type_address(u"0xF801");
  desk_->read();
  desk_->write();
  wire_.advance(500);
  host_.user.answer_now();
  wire_.advance(200);
  EXPECT_EQ(wire_.sender.writes.back(), "@9208*@9201*@93ff*")
      << "also where the read would have told another";
}

TEST_F(RegisterDeskTest, SavingTellsWhatIsInTheFileAndOffersToReadWhatWasWritten) {
  open_and_read();
  const auto save_as = [this](const char* name) {
    host_.user.paths = {folder_ / name};
    desk_->save_file();
    wire_.advance(1000);
    return host_.last_status();
  };
  EXPECT_EQ(save_as("a.txt"), "a.txt: 1 register saved, 2 never read and left out");
  desk_->type_value(u"0x77");
  desk_->write();
  wire_.advance(200);
  EXPECT_EQ(save_as("b.txt"),
            "b.txt: 1 register saved, 2 never read and left out, 1 was written since it was read");
  EXPECT_EQ(folder_.read("b.txt"), "0xF800=0xA5 //MODE\r\n") << "the value that was read";
  EXPECT_EQ(host_.user.questions.at(0).text,
            "1 register was written since it was read. The file gets the values that were read.\nRead them "
            "again first?");
  chip_.values[0x800] = 0x77;
  host_.user.answers = {Answer::yes};
  EXPECT_EQ(save_as("c.txt"), "c.txt: 1 register saved, 2 never read and left out");
  EXPECT_EQ(folder_.read("c.txt"), "0xF800=0x77 //MODE\r\n");
}

TEST_F(RegisterDeskTest, ATypedAddressFindsItsRegisterAndRow) {
  open_and_read();
  desk_->type_address(u"0xFA20");
  EXPECT_EQ(sheet().current(), 3u);
  EXPECT_EQ(sheet().current_row(), -1) << "of another category";
  EXPECT_NE(sheet().field(0), nullptr);
  desk_->type_address(u"0xF801");
  EXPECT_EQ(sheet().name_text(), u"GAIN");
  EXPECT_EQ(sheet().current_row(), 1);
  desk_->type_address(u"0x1234");
  EXPECT_EQ(sheet().current(), 5u) << "none of the five";
  chip_.values[0x234] = 0x42;
  desk_->read();
  wire_.advance(300);
  EXPECT_EQ(sheet().value_text(), u"0x42");
  EXPECT_EQ(sheet().value_cell(1), u"") << "the row before is not touched";

  desk_->choose_category(1);
  desk_->type_address(u"0xF801");
  EXPECT_EQ(sheet().current(), 4u) << "the listed register takes over from the first with this address";
}

TEST_F(RegisterDeskTest, ACategoryIsReadRowByRowAndUnansweredRowsAgain) {
  open_and_read();
  chip_.silent = true;
  desk_->load_category();
  EXPECT_FALSE(view_.buttons.load_category);
  EXPECT_TRUE(view_.buttons.stop);
  wire_.advance(99 + 50);
  EXPECT_TRUE(chip_.requests.empty());
  wire_.advance(1 + 150);
  EXPECT_EQ(chip_.requests, (std::vector<int>{0x800, 0x800}));
  chip_.silent = false;
  wire_.advance(150);
  chip_.latency = 80;  // too late for the look after 60 ms, in time for the one before the next request
  wire_.advance(1500);
  EXPECT_EQ(chip_.requests, (std::vector<int>{0x800, 0x800, 0x800, 0x801, 0x0A5}));
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(stored(i), (std::vector{0xA5, 0x3C, 0x51})[i]) << i;
  EXPECT_TRUE(view_.buttons.load_category);
}

TEST_F(RegisterDeskTest, ASequenceThatStandsStillSaysWhereAndCanBeStopped) {
  open_and_read();
  chip_.damaged[0x800] = "~G5^";
  desk_->load_all();
  wire_.advance(260);
  EXPECT_EQ(host_.last_status(), "0xF800: the answer was damaged on the line, it is asked again");
  EXPECT_EQ(stored(0), 0xA5);
  wire_.advance(150);
  EXPECT_EQ(host_.last_status(), "0xF800: answered");
  EXPECT_EQ(chip_.requests, (std::vector<int>{0x800, 0x800}));
  chip_.silent = true;
  wire_.advance(3000);
  EXPECT_EQ(host_.last_status(), "0xF801: no answer, it is asked again until \"Stop\"");
  chip_.silent = false;
  wire_.advance(200);
  EXPECT_EQ(host_.last_status(), "0xF801: answered");
  chip_.silent = true;
  wire_.advance(3000);
  desk_->stop();
  EXPECT_EQ(host_.last_status(), "Load All From ISP: stopped after 2 registers");
  EXPECT_EQ(view_.buttons.load_all_caption, "Load All From ISP");
  EXPECT_FALSE(view_.buttons.stop);
  chip_.requests.clear();
  wire_.advance(1000);
  EXPECT_TRUE(chip_.requests.empty());
}

TEST_F(RegisterDeskTest, ACategoryChangeStopsTheCategorysSequence) {
  open();
  desk_->load_category();
  wire_.advance(400);
  desk_->choose_category(1);
  EXPECT_TRUE(view_.buttons.load_category);
  chip_.requests.clear();
  wire_.advance(1000);
  EXPECT_EQ(chip_.requests, std::vector<int>{0xA20});
  EXPECT_EQ(sheet().value_cell(0), u"0x07");
  EXPECT_EQ(stored(1), -1);
}

TEST_F(RegisterDeskTest, LoadAllShowsItsProgressAndLetsOthersIn) {
  open_and_read();
  desk_->load_all();
  wire_.advance(100 + 150 + 1);
  EXPECT_EQ(view_.buttons.load_all_caption, "Load All From ISP(20%)");
  desk_->select_row(2);
  wire_.advance(1200);
  EXPECT_EQ(chip_.requests, (std::vector<int>{0x800, 0x801, 0x0A5, 0x0A5, 0xA20, 0x801}));
  for (std::size_t i = 0; i < 5; ++i)
    EXPECT_EQ(stored(i), (std::vector{0xA5, 0x3C, 0x51, 0x07, 0x3C})[i]) << i;
  EXPECT_TRUE(view_.buttons.load_all);
  EXPECT_EQ(view_.buttons.load_all_caption, "Load All From ISP");
}

TEST_F(RegisterDeskTest, SequencesHaltAtAnAddressThatCannotBeRead) {
  open(
      u"x\n<category catname=\"C\">\n<reg regname=\"a\" addr=\"0x801\" write=\"W\">\n</reg>\n"
      u"<reg regname=\"b\" addr=\"12\" write=\"W\">\n</reg>\n<category catname=\"Empty\">\n");
  wire_.advance(100);
  ASSERT_TRUE(desk_->reading());
  desk_->select_row(1);
  wire_.advance(500);
  EXPECT_EQ(stored(1), -1) << "a reply under way never lands on it";
  desk_->load_category();
  desk_->load_all();
  wire_.advance(2000);
  EXPECT_FALSE(view_.buttons.load_category);
  EXPECT_EQ(host_.statuses,
            (std::vector<std::string>{
                "Load From ISP halts at b, which has no address above 0. \"Stop\" or choosing "
                "a category makes its button live again.",
                "Load All From ISP halts at b, which has no address above 0. \"Stop\" makes its "
                "button live again."}));
  EXPECT_EQ(view_.buttons.load_all_caption, "Load All From ISP(0%)");
  desk_->choose_category(1);
  EXPECT_TRUE(view_.buttons.load_category) << "the next category change brings it back";
  EXPECT_FALSE(view_.buttons.load_all);
  desk_->load_category();
  wire_.advance(100);
  EXPECT_TRUE(view_.buttons.load_category) << "no rows to read";
  desk_->stop();
  EXPECT_TRUE(view_.buttons.load_all);
  chip_.values[0x801] = 0x99;
  desk_->choose_category(0);
  wire_.advance(55);
  desk_->choose_category(1);
  wire_.advance(2000);
  EXPECT_EQ(chip_.requests.back(), 0x801);
  EXPECT_NE(sheet().value_text(), u"0x99") << "of the category before";
}

TEST_F(RegisterDeskTest, WritesARegisterFileToTheChip) {
  open_and_read();
  host_.user.paths = {folder_.write(
      "r.txt", "0xF801=0x11 //a\r\nbad\r\n0xF801=0x22 //b\r\n0xF800=0x33 //c\r\n0xFFFF=0x44 //d\r\n")};
  desk_->load_file();
  EXPECT_EQ(host_.last_status(), "r.txt: 1 line skipped, the first is line 2");
  wire_.advance(50);
  EXPECT_EQ(view_.buttons.load_file_caption, "Load REG to ISP(20%)") << "one of five matches";
  EXPECT_EQ(host_.busy, std::vector<bool>{true}) << "closing the window asks";
  wire_.advance(90 + 90);
  EXPECT_EQ(view_.buttons.load_file_caption, "Load REG to ISP(60%)")
      << "an address given twice ends it early";
  EXPECT_EQ(wire_.sender.writes,
            (std::vector<std::string>{"@9208*@9200*@9333*", "@9208*@9201*@9322*", "@9208*@9201*@9322*"}));
  wire_.advance(40);
  EXPECT_EQ(sheet().value_cell(1), u"0x22");
  EXPECT_EQ(sheet().value_cell(2), u"") << "the file has no value for it";
  EXPECT_EQ(view_.buttons.load_file_caption, "Load REG from File to ISP...");
  EXPECT_EQ(host_.busy, (std::vector<bool>{true, false}));
}

TEST_F(RegisterDeskTest, FlashTakesTheMaskAndEightBlocks) {
  open_and_read();
  desk_->write_flash();
  wire_.advance(50 + 8 * 99);
  EXPECT_EQ(wire_.sender.writes.size(), 8u) << "each block waits 50 ms on top of the pacing";
  wire_.advance(8);
  ASSERT_EQ(wire_.sender.writes.size(), 9u);
  std::string mask = "@dc00*@dd00*@de01*";
  for (int i = 1; i < 256; ++i) mask += "@de00*";
  EXPECT_EQ(wire_.sender.writes[0], mask + "@df00*") << "only 0xF800 was read";
  std::string block = "@dc00*@dd00*@dea5*@deff*";
  for (int i = 2; i < 256; ++i) block += "@de00*";
  EXPECT_EQ(wire_.sender.writes[1], block + "@e000*") << "0xF801 is not known: 0xFF";
  EXPECT_TRUE(wire_.sender.writes[3].starts_with("@dc02*@dd00*@de00*"));
  EXPECT_EQ(wire_.sender.writes[3].substr(6 * (2 + 0x20), 6), "@deff*") << "0xFA20";
  EXPECT_TRUE(wire_.sender.writes[8].ends_with("@e007*"));
}

}  // namespace
}  // namespace qv5123
