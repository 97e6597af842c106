#include "tuning/matrix_desk.h"

#include <gmock/gmock.h>

#include "support/chart_readings.h"
#include "support/chip_desk_bench.h"
#include "support/traffic_text.h"

namespace qv5123 {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

constexpr char kPickerOff[] = "@940a*@9429*@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*";

class MatrixDeskTest : public test::DeskBench {
 protected:
  std::vector<std::string> codes() const {
    std::vector<std::string> texts;
    for (int row = 0; row < 3; ++row)
      for (int column = 0; column < 3; ++column) texts.push_back(desk_.code_text(row, column));
    return texts;
  }
  void type_patches(const MeasuredColours& counts) { test::type_patches(desk_, counts); }
  const MeasuredColour& patch(std::size_t i) const { return desk_.values().measured[i]; }

  MatrixDesk desk_{host_, host_.doc.user_data};
};

TEST_F(MatrixDeskTest, MeasuresPatchAfterPatch) {
  answer_picker();
  desk_.choose_manual_input(true);
  EXPECT_EQ(desk_.typing(), MatrixDesk::Typing::all);
  desk_.picker().click_switch(true);
  EXPECT_EQ(desk_.typing(), MatrixDesk::Typing::chosen) << "switching on ends manual input";
  EXPECT_FALSE(desk_.picker().keys_enabled()) << "not before the chip has followed";
  EXPECT_EQ(wire(3000),
            "@940a*@9429*@920a*@9220*@9380*@920a*@9229*@9385*@a000*@a100*"
            "@920c*@923a*@9302*@920c*@923b*@931c*@920c*@9238*@9303*@920c*@9239*"
            "@93c0*");

  desk_.choose_patch(5);
  desk_.choose_patch_step(100);
  desk_.picker().type_x(0x3C1);
  desk_.get_color();
  EXPECT_TRUE(wire(400).starts_with("@920c*@9238*@9303*@920c*@9239*@93c1*@940c*@943d*"))
      << "not before the cursor is there";
  EXPECT_FALSE(desk_.picker().keys_enabled());
  fake_.advance(2000);
  EXPECT_TRUE(desk_.picker().keys_enabled());
  EXPECT_THAT(patch(5), ElementsAre(10, 20, 30));
  EXPECT_EQ(host_.last_status(), "GET COLOR: Bluish green(R,G,B) is 10, 20, 30");
  EXPECT_EQ(desk_.values().patch, 6u);
  EXPECT_EQ(desk_.picker().position(), (PickerPosition{461, 640})) << "the start of the next row";

  desk_.picker().type_y(650);
  desk_.get_color();
  desk_.choose_patch(9);
  fake_.advance(2000);
  EXPECT_THAT(patch(6), ElementsAre(10, 20, 30)) << "the patch that was chosen as the button was pressed";
  EXPECT_THAT(patch(9), Each(0));

  fake_.sender.chip = {};
  desk_.get_color();
  fake_.advance(5000);
  EXPECT_EQ(host_.last_status(), "GET COLOR: the chip did not answer.");
  answer_picker();
  desk_.get_color();
  fake_.advance(2000);
  EXPECT_EQ(host_.last_status(), "GET COLOR: Purple(R,G,B) is 10, 20, 30") << "the failure is over";

  fake_.link.connection_changed();
  desk_.get_color();
  EXPECT_TRUE(host_.last_status().ends_with(kPickerChipWasAway)) << "its picker may be off";
}

TEST_F(MatrixDeskTest, CalculatesOnlyWithGrey) {
  desk_.calculate(host_.user);
  ASSERT_EQ(host_.user.messages.size(), 1u);
  EXPECT_EQ(host_.user.messages[0].text, "Please get color of gray!");

  MeasuredColours greys;
  greys.fill({100, 100, 100});
  type_patches(greys);
  desk_.calculate(host_.user);
  EXPECT_EQ(host_.last_status(), "The measured patches do not determine a matrix.");
  EXPECT_THAT(codes(), Each("0x0000"));
  desk_.type_code(0, 0, "0x0500");
  host_.user.answers = {Answer::yes};
  desk_.set_row(MatrixControl::red_row, host_.user);
  EXPECT_EQ(codes()[1], "0x1F00") << "what stood there as 0 counts as 0";

  desk_.type_ratio(0);
  desk_.calculate(host_.user);
  EXPECT_THAT(codes(), ElementsAre("0x0400", "0x0000", "0x0000", "0x0000", "0x0400", "0x0000", "0x0000",
                                   "0x0000", "0x0400"));
  EXPECT_EQ(host_.last_status(), "Matrix calculated from 24 patches.") << "the failure is over";
  desk_.type_ratio(150);
  desk_.calculate(host_.user);
  EXPECT_EQ(host_.last_status(), "Correction Ratio takes 0..100 %: nothing was calculated.");
  EXPECT_EQ(desk_.values().ratio, 0);

  desk_.clear();
  EXPECT_THAT(codes(), Each(""));
  EXPECT_THAT(patch(23), Each(0));
}

TEST_F(MatrixDeskTest, SetDerivesStoresAndSendsARow) {
  desk_.choose_light(2);
  desk_.choose_mode(3);
  desk_.type_code(0, 0, "0x0500");
  desk_.type_code(0, 2, "1F00");
  desk_.set_row(MatrixControl::red_row, host_.user);
  EXPECT_EQ(codes()[1], "0x0000") << "1 - 1.25 + 0.25";
  EXPECT_EQ(wire(), "@4e02*@ca03*@5805*@5800*@5800*@5800*@58ff*@5800*");
  EXPECT_EQ(host_.last_status(), "Red row: 3 registers sent");
  const auto own_bytes = [this] {
    return bytes_of(desk_.own_traffic({desk_.field(desk_.values().tables[3][0][2][1])}));
  };
  const std::string row = "@4e02*@ca03*@5805*@5800*@5800*@5800*@58ff*@5800*";
  EXPECT_EQ(own_bytes(), row) << "as its own button";
  desk_.choose_mode(1);
  EXPECT_EQ(own_bytes(), row + "@4e02*@ca01*") << "and the chip's choice is the page's again";
  desk_.choose_mode(3);
  UserDataImage stored;
  desk_.model().store(stored);
  EXPECT_EQ(stored.word(635 + 36), 0x0500);
  EXPECT_EQ(stored.word(635 + 36 + 4), 0xFF00);

  desk_.type_code(1, 0, "0x2000");
  EXPECT_TRUE(desk_.code_refused(1, 0));
  desk_.set_row(MatrixControl::green_row, host_.user);
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(host_.last_status(),
            "G from R takes 0x0000..0x1FFF in 13-bit "
            "two's complement, 0x0400 is 1.0.");
  EXPECT_EQ(codes()[3], "0x2000") << "to be corrected";
  desk_.choose_light(2);
  EXPECT_EQ(codes()[0], "0x0500") << "what was set is in the table";
  EXPECT_EQ(codes()[3], "0x0000") << "what was refused is not";

  fake_.sender.connected = false;
  desk_.set_row(MatrixControl::blue_row, host_.user);
  fake_.advance(1000);
  EXPECT_EQ(host_.last_status(), "Blue row: not sent, the port is not open");
}

TEST_F(MatrixDeskTest, PutsTheColorDifferenceFitBesideCalculateUntilOneIsChosen) {
  using Fit = MatrixDesk::Fit;
  desk_.fit_color_difference(host_);
  EXPECT_EQ(host_.user.messages.at(0).text, "Please get color of gray!");
  type_patches(test::chart_readings("chart"));
  desk_.calculate(host_.user);
  const auto calculated = codes();
  desk_.fit_color_difference(host_);
  EXPECT_THAT(host_.last_status(),
              testing::MatchesRegex("Color difference fit: mean 1\\..., calculated 1\\..."
                                    "\\. Choose one below the patches\\."));
  EXPECT_EQ(codes(), calculated) << "nothing was chosen yet";
  EXPECT_TRUE(desk_.in_force(Fit::calculated));
  desk_.choose_fit(Fit::color_difference);
  EXPECT_NE(codes(), calculated);
  EXPECT_TRUE(desk_.in_force(Fit::color_difference));
  desk_.choose_fit(Fit::calculated);
  EXPECT_EQ(codes(), calculated);
  desk_.type_patch(0, 0, 1);
  EXPECT_FALSE(desk_.fits().color_difference) << "it was fitted to other patches";

  host_.work.busy = true;
  desk_.fit_color_difference(host_);
  desk_.clear();
  host_.work.catch_up();
  fake_.advance(10);
  EXPECT_FALSE(desk_.fits().color_difference);
}

TEST_F(MatrixDeskTest, AsksBeforeADoubtfulMatrixIsSentAndRefusesAnEmptyOne) {
  desk_.clear();
  desk_.set_row(MatrixControl::red_row, host_.user);
  EXPECT_EQ(host_.last_status(), "R from R is empty: nothing was sent.");
  type_patches(test::chart_readings("chart-bright"));
  desk_.calculate(host_.user);
  const MatrixValues before = desk_.values();
  desk_.set_row(MatrixControl::red_row, host_.user);
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_THAT(host_.user.questions[0].text, StartsWith("Clipped, over 250 counts: "));
  EXPECT_THAT(host_.user.questions[0].text, EndsWith("\n\nSend the matrix all the same?"));
  EXPECT_EQ(host_.user.questions[0].preferred, Answer::no);
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(desk_.values(), before);
  EXPECT_EQ(host_.last_status(), "The matrix was not sent.");

  host_.user.answers = {Answer::yes};
  desk_.set_row(MatrixControl::red_row, host_.user);
  EXPECT_EQ(wire().size(), 8u * 6);
  desk_.set_row(MatrixControl::green_row, host_.user);
  EXPECT_EQ(host_.user.questions.size(), 2u) << "asked once for each reason";
  EXPECT_EQ(wire().size(), 8u * 6);
}

TEST_F(MatrixDeskTest, AsksBeforeASaveTakesADoubtfulFitAlong) {
  answer_picker();
  image().mark_loaded();
  desk_.load_file();
  const auto saved = [this] {
    desk_.start_save(host_.user, desk_.save(host_));
    return wire(15'000).size() / 6;
  };
  constexpr std::size_t kWhole = 2 + 4 * 55 + 2 + 10;
  type_patches(test::chart_readings("chart-bright"));
  EXPECT_EQ(saved(), kWhole) << "nothing was fitted to them, and nothing asked";
  desk_.calculate(host_.user);
  desk_.choose_light(1);
  EXPECT_EQ(saved(), 0u);
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_THAT(host_.user.questions[0].text,
              StartsWith("The matrix of TVI, Outdoor:\nClipped, over 250 counts: "));
  EXPECT_EQ(host_.user_data_writes, 1);
  host_.user.answers = {Answer::yes};
  EXPECT_EQ(saved(), kWhole);
  EXPECT_EQ(saved(), kWhole) << "asked once for each reason";
  desk_.load_file();
  MeasuredColours greys = test::chart_readings("chart");
  std::fill(greys.begin(), greys.begin() + 18, MeasuredColour{});
  type_patches(greys);
  desk_.calculate(host_.user);
  host_.user.answers = {Answer::no, Answer::yes};
  EXPECT_EQ(saved(), 0u);
  desk_.set_row(MatrixControl::red_row, host_.user);
  wire();
  EXPECT_EQ(saved(), kWhole) << "agreed to for Set";
  desk_.choose_light(2);
  type_patches(test::chart_readings("chart-bright"));
  desk_.calculate(host_.user);
  desk_.load_file();
  EXPECT_EQ(saved(), kWhole) << "another stands there by now";
  EXPECT_EQ(host_.user.questions.size(), 4u);
}

TEST_F(MatrixDeskTest, CopiesTheShownMatrixToOtherPlaces) {
  desk_.choose_mode(kAhd);
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column)
      desk_.type_code(row, column, row == column ? "0x0500" : "0x1F80");
  desk_.copy_matrix({{kTvi, 2}, {kCvbs, 0}}, host_.user);
  EXPECT_EQ(wire(3000),
            "@4e02*@ca00*@5805*@5800*@58ff*@5880*@58ff*@5880*"
            "@4e02*@ca00*@59ff*@5980*@5905*@5900*@59ff*@5980*"
            "@4e02*@ca00*@5aff*@5a80*@5aff*@5a80*@5a05*@5a00*"
            "@4e00*@ca03*@5205*@5200*@52ff*@5280*@52ff*@5280*"
            "@4e00*@ca03*@53ff*@5380*@5305*@5300*@53ff*@5380*"
            "@4e00*@ca03*@54ff*@5480*@54ff*@5480*@5405*@5400*"
            "@4e00*@ca01*");
  EXPECT_EQ(desk_.values().tables[kTvi][0][2], desk_.values().tables[kAhd][0][0]);
  EXPECT_EQ(desk_.values().tables[kCvbs][2][0][2], 0x500);
  EXPECT_EQ(desk_.values().tables[kTvi][0][0][0], 0) << "not asked for";
}

TEST_F(MatrixDeskTest, LoadsFromTheChip) {
  std::string reply(432, '0');
  reply.replace(0, 2, "1f").replace(6, 2, "80");  // TVI, row R, Outdoor: high and low byte of the first
  reply.replace(430, 2, "7b");                    // CVI, row B, Light-2: the last low byte
  reply.replace(216 + 12 + 4, 2, "ff");           // AHD, row R, Light-2: high byte of the second
  reply.replace(108 + 36, 2, "01");               // CVBS, row G, Outdoor: high byte of the first
  desk_.type_code(0, 1, "0x0111");
  load_desk(desk_, reply);
  EXPECT_EQ(wire(), "@6a00*");
  EXPECT_EQ(codes()[0], "0x1F80");
  EXPECT_EQ(codes()[1], "0x0000") << "what was typed is gone";
  EXPECT_EQ(desk_.values().tables[kCvi][2][2][2], 0x7B);
  EXPECT_EQ(desk_.values().tables[kAhd][0][2][1], -256);
  EXPECT_EQ(desk_.values().tables[kCvbs][1][0][0], 0x100);
}

TEST_F(MatrixDeskTest, SavesAllMatricesAndEndsTheCapture) {
  answer_picker();
  for (int i = 0; i < 54; ++i) image().set_entry(382 + static_cast<std::size_t>(i), i);
  desk_.load_file();
  EXPECT_EQ(host_.last_status(), "Load File ok");
  desk_.picker().click_switch(true);
  host_.user.answers = {Answer::yes};
  wire(3000);
  desk_.start_save(host_.user, desk_.save(host_));
  EXPECT_EQ(host_.last_status(), "CCM Data Saving... Please wait");
  EXPECT_EQ(host_.user_data_writes, 1);
  const std::string sent = wire(15000);
  EXPECT_THAT(sent,
              StartsWith("@f901*@fa01*@ca00*@5200*@5201*@5202*@5203*@5204*@5205*@5512*@5513*@5514*@5515*"
                         "@5516*@5517*@5824*@5825*@5826*@5827*@5828*@5829*@5306*"));
  for (std::size_t mode = 0; mode < 4; ++mode)
    EXPECT_EQ(sent.substr((2 + 55 * mode) * 6, 6), "@ca0" + std::to_string(mode) + "*");
  EXPECT_THAT(sent, EndsWith(std::string("@5a00*@fa00*@f900*") + kPickerOff));
  EXPECT_EQ(sent.size(), (2u + 4 * 55 + 2 + 10) * 6);
  EXPECT_FALSE(desk_.picker().on());
  EXPECT_EQ(host_.last_status(), "Transfered Linear Matrix parameters to ISP. Enable color correction.");

  host_.write_succeeds = false;
  desk_.picker().click_switch(true);
  fake_.advance(3000);
  fake_.sender.chip = {};
  desk_.start_save(host_.user, desk_.save(host_));
  fake_.advance(15000);
  EXPECT_TRUE(desk_.picker().on()) << "the chip did not follow";
  EXPECT_EQ(host_.last_status(), "Color picker: no answer from 0xFA29");
  EXPECT_EQ(*(host_.statuses.end() - 2), "Only the chip was saved: no setting file was written.");
}

TEST_F(MatrixDeskTest, LeavesAChipWithItsPickerOffAtWhateverMoment) {
  answer_picker();
  const auto last_words = [this] { return bytes_of(desk_.leave()); };
  const std::string off = "@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*";
  EXPECT_EQ(last_words(), "") << "never switched on";
  switched(desk_, true, 50);
  EXPECT_EQ(last_words(), "") << "nothing was written yet";
  wire(3000);
  for (const int moment : {200, 3000}) {
    EXPECT_FALSE(switched(desk_, true, moment).empty());
    EXPECT_EQ(last_words(), off) << moment;
    EXPECT_FALSE(desk_.picker().on());
    EXPECT_EQ(last_words(), "");
    EXPECT_FALSE(wire(3000).ends_with("@a100*"));
  }
  switched(desk_, true);
  switched(desk_, false, 300);
  EXPECT_EQ(last_words(), off) << "while it is switched off";
  switched(desk_, true);
  switched(desk_, false);
  EXPECT_EQ(last_words(), "");
}

TEST_F(MatrixDeskTest, APickerThatWasOnAsThePortWasLostIsSwitchedOffOnceItIsBack) {
  answer_picker();
  switched(desk_, true);
  fake_.link.connection_changed();
  wire(10);
  EXPECT_EQ(host_.last_status(), kPickerPortLost);
  fake_.sender.connected = false;
  fake_.link.connection_changed();
  wire(1000);
  EXPECT_TRUE(desk_.picker().on()) << "lost again";
  fake_.sender.connected = true;
  fake_.link.connection_changed();
  EXPECT_EQ(wire(1000), "@920a*@9220*@9390*@920a*@9229*@9305*@a001*@a101*");
  EXPECT_FALSE(desk_.picker().on());
  EXPECT_EQ(host_.last_status(), kPickerOffAfterLoss);

  switched(desk_, true);
  switched(desk_, false);
  fake_.link.connection_changed();
  wire(10);
  EXPECT_EQ(host_.last_status(), kPickerOffStatus);
}

}  // namespace
}  // namespace qv5123
