#include "tuning/awb_desk.h"

#include "support/desk_bench.h"
#include "support/desk_fields.h"
#include "tuning/awb_chart.h"

namespace qv5123 {
namespace {

constexpr std::size_t kWords = 10;  // of the six lines, the page's first values

class AwbDeskTest : public test::DeskBench {
 protected:
  std::vector<int> words() const {
    std::vector<int> numbers = desk_.model().numbers();
    numbers.resize(kWords);
    return numbers;
  }

  AwbDesk desk_{host_, host_.doc.user_data};
};

TEST_F(AwbDeskTest, LimitsEightWordsOfTenWhenTheyAreSet) {
  for (std::size_t word = 0; word < kWords; ++word) desk_.model().set_number(word, 900);
  EXPECT_EQ(desk_.unread(), "not read yet");
  host_.user.answers = {Answer::yes};
  desk_.start_save(host_.user, desk_.save());
  EXPECT_EQ(wire(2000).find("@0d03*@0d20*"), std::string::npos)
      << "what was typed and not set is saved as it is";
  for (int line = 0; line < 6; ++line) desk_.send_line(static_cast<AwbControl>(line));
  EXPECT_EQ(wire(2000),
            "@fa01*@0d03*@0d20*@0e03*@0e20*@fa00*@fa01*@0f03*@0f20*@1003*@1020*@fa00*"
            "@fa01*@1103*@1120*@1203*@1220*@fa00*@fa01*@1303*@1320*@1403*@1420*@fa00*"
            "@fa01*@1503*@1584*@fa00*@fa01*@1603*@1684*@fa00*");
  EXPECT_EQ(words(), (std::vector<int>{800, 800, 800, 800, 800, 800, 800, 800, 900, 900}));
  test::expect_controls_write_registers(desk_);
}

TEST_F(AwbDeskTest, LimitsThemAsTheyComeFromAFileAndNotFromTheChip) {
  UserDataImage& file = host_.doc.user_data;
  for (int word = 0; word < 10; ++word) file.set_word(181 + 2 * static_cast<std::size_t>(word), -900);
  desk_.load_file();
  EXPECT_EQ(words(), (std::vector<int>{-800, -800, -800, -800, -800, -800, -800, -800, -900, -900}));
  EXPECT_EQ(host_.last_status(), "Load File Ok.");
  EXPECT_EQ(desk_.unread(), "not read yet") << "no file was loaded";
  file.mark_loaded();
  EXPECT_EQ(AwbDesk(host_, file).values(), desk_.values()) << "a page that is opened after the file";

  std::string reply;
  for (int word = 0; word < 10; ++word) reply += "0384";
  load_desk(desk_, reply);
  const int negative = 900 - 65536;
  EXPECT_EQ(words(), (std::vector<int>{negative, negative, negative, negative, negative, negative, negative,
                                       negative, 900, 900}));
}

TEST_F(AwbDeskTest, SavesTheChipsLinesAsTheyCame) {
  desk_.model().set_number(0, 7);
  load_desk(desk_, "01020203fffefce0032101050106010704098000");
  EXPECT_EQ(wire(), "@3600*");
  EXPECT_EQ(host_.last_status(), "Load Isp Ok.");
  EXPECT_EQ(desk_.unread(), "") << "so that saving needs no question";
  EXPECT_EQ(words()[0], 0x102);
  EXPECT_EQ(words()[4], 0x321 - 65536) << "beyond the limit";

  desk_.start_save(host_.user, desk_.save());
  desk_.start_save(host_.user, desk_.save());
  EXPECT_EQ(wire(),
            "@f901*@fa01*@0d01*@0d02*@0e02*@0e03*@0fff*@0ffe*@10fc*@10e0*@1103*@1121*@1201*@1205*@1301*@1306*"
            "@1401*@1407*@1504*@1509*@1680*@1600*@fa00*@f900*");
  EXPECT_EQ(fake_.sender.writes.size(), 1u + 14) << "each word in a flush of its own, and one save only";
  EXPECT_EQ(host_.last_status(), "AWB Data Save Done.");
}

TEST_F(AwbDeskTest, AMeasuredColourBecomesThePatchThatWasChosen) {
  answer_picker();
  desk_.choose_patch(20);
  desk_.get_color();
  desk_.choose_patch(3);
  EXPECT_EQ(wire(), "@940c*@9492*@940c*@9496*@940c*@949a*");
  EXPECT_EQ(desk_.values().patches[20], (PatchColour{10, 20, 30}));
  desk_.model().store(host_.doc.user_data);
  EXPECT_EQ(host_.doc.user_data.word(274), 0x141E);

  fake_.sender.chip = nullptr;
  desk_.get_color();
  fake_.advance(5000);
  EXPECT_EQ(host_.last_status(), "GET COLOR: no answer from 0xFC92");
  EXPECT_EQ(desk_.values().patches[3], PatchColour{});
  fake_.sender.chip = [this](const std::string&) { fake_.receive("~07^"); };
  desk_.get_color();
  fake_.advance(5000);
  EXPECT_EQ(host_.last_status(), "GET COLOR: Foliage is 7, 7, 7") << "the failure is over";
}

TEST(AwbChart, LinesLieWhereTheWordsPutThemAndPatchesHaveLuma) {
  AwbValues values;
  values.words = {256, 128, 0, 0, -256, 0, 0, 64, 128, -128};
  const auto lines = awb_chart_lines(values);
  EXPECT_EQ(lines[0].from.x, -160);
  EXPECT_NEAR(lines[0].from.y, 60, 1e-9) << "y = -0.8 + 0.5, downwards";
  EXPECT_EQ(lines[0].letter, (ChartPoint{-164, lines[0].from.y}));
  EXPECT_EQ(lines[4].from, (ChartPoint{100, -60}));
  EXPECT_EQ(lines[5].to, (ChartPoint{20, 100}));

  values.patches[0] = {300, 0, 0};
  values.patches[18] = {128, 128, 128};
  values.patches[19] = {-5, 0, 0};
  const auto patches = awb_chart_patches(values);
  ASSERT_EQ(patches.size(), 2u);
  EXPECT_NEAR(patches[0].centre.x, 200 * -0.16797 / 0.296875, 1e-9) << "drawn as 255";
  EXPECT_NEAR(patches[0].centre.y, -200 * 0.5 / 0.296875, 1e-9);
  EXPECT_EQ(patches[0].side, 4);
  EXPECT_EQ(patches[1].row, 18u);
  EXPECT_NEAR(patches[1].centre.x, 0, 1e-2);
}

}  // namespace
}  // namespace qv5123
