#include "registers/hex_edit.h"
#include "registers/register_desk_bench.h"

namespace qv5123 {
namespace {

using test::RegisterDeskTest;

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
  EXPECT_EQ(value_cell(0), u"0x07");
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

}  // namespace
}  // namespace qv5123
