#include <functional>

#include "registers/register_desk_bench.h"
#include "registers/register_file.h"

namespace qv5123 {
namespace {

using test::RegisterDeskTest;

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
  host_.work.busy = true;
  EXPECT_EQ(save_as("d.txt"), "c.txt: 1 register saved, 2 never read and left out");
  wire_.advance(1000);
  EXPECT_TRUE(host_.last_status().starts_with("Still writing ")) << host_.last_status();
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
  EXPECT_EQ(value_cell(1), u"0x22");
  EXPECT_EQ(value_cell(2), u"") << "the file has no value for it";
  EXPECT_EQ(view_.buttons.load_file_caption, "Load REG from File to ISP...");
  EXPECT_EQ(host_.busy, (std::vector<bool>{true, false}));
}

class RegisterCheckTest : public RegisterDeskTest {
 protected:
  /// Loads a file of three registers on a chip that keeps what it is sent, but for what `loses` is true of.
  void load_file(std::function<bool(const std::string&)> loses = [](const std::string&) { return false; }) {
    open_and_read();
    desk_->check().tell({[this] { return wanted_; },
                         [this](const std::string& text, const std::vector<std::string>& differences,
                                std::function<void()> again) {
                           texts_.push_back(text);
                           differences_ = differences;
                           again_ = std::move(again);
                         }});
    host_.user.paths = {folder_.write("r.txt", "0xF801=0x22 //\r\n0xF800=0x33 //\r\n0xFA20=0x44 //\r\n")};
    wire_.sender.chip = [this, answers = wire_.sender.chip, loses](const std::string& bytes) {
      if (bytes.size() == 18 && bytes.starts_with("@92") && !loses(bytes))
        chip_.values[std::stoi(bytes.substr(3, 2) + bytes.substr(9, 2), nullptr, 16)] =
            std::stoi(bytes.substr(15, 2), nullptr, 16);
      answers(bytes);
    };
    desk_->load_file();
    wire_.advance(400);
    sent_ = wire_.sender.wire();
    wire_.advance(10'000);
  }

  bool wanted_ = true;
  std::string sent_;
  std::vector<std::string> texts_;
  std::vector<std::string> differences_;
  std::function<void()> again_;
};

TEST_F(RegisterCheckTest, ReadsBackWhatAFileWrote) {
  load_file();
  EXPECT_EQ(texts_, (std::vector<std::string>{"Verifying... 1 of 3", "Verifying... 2 of 3",
                                              "Verifying... 3 of 3", "Verified: 3 of 3 values"}));
  EXPECT_EQ(sent_.substr(0, 72), "@9208*@9200*@9333*@9208*@9201*@9322*@920a*@9220*@9344*@9208*@9201*@9322*")
      << "after all that the file sends";
  EXPECT_FALSE(again_);
  wanted_ = false;
  host_.user.paths = {folder_.path() / "r.txt"};
  desk_->load_file();
  wire_.advance(10'000);
  EXPECT_EQ(texts_.size(), 5u);
  EXPECT_EQ(texts_.back(), "") << "what was told is past";
}

TEST_F(RegisterCheckTest, SendsAgainWhatDiffers) {
  int lost = 0;
  load_file([&lost](const std::string& bytes) { return bytes == "@920a*@9220*@9344*" && lost++ < 2; });
  EXPECT_EQ(texts_.back(), "1 of 3 values differs: 0xFA20 (sent 0x44, chip 0x07)");
  EXPECT_EQ(differences_, std::vector<std::string>{"0xFA20 (sent 0x44, chip 0x07)"});
  ASSERT_TRUE(again_);
  chip_.requests.clear();
  again_();
  wire_.advance(10'000);
  EXPECT_EQ(texts_.back(), "Verified: 3 of 3 values");
  EXPECT_EQ(lost, 3) << "the first repeat was lost as well";
  EXPECT_EQ(chip_.requests, (std::vector<int>{0xA20, 0xA20, 0xA20})) << "the others were verified";
}

TEST_F(RegisterCheckTest, BelievesNoSingleAnswerAndNoSilence) {
  chip_.damaged[0xA20] = "~45^";
  load_file();
  EXPECT_EQ(texts_.back(), "Verified: 3 of 3 values") << "another answer to the same register said 0x44";
  chip_.silent = true;
  host_.user.paths = {folder_.path() / "r.txt"};
  desk_->load_file();
  wire_.advance(30'000);
  EXPECT_EQ(texts_.back(), "Not verified: no answer from the chip");
  EXPECT_FALSE(again_);
}

TEST_F(RegisterCheckTest, WhatIsKnownToDifferIsNamedAlsoWhereALaterRegisterIsSilent) {
  chip_.values.erase(0xA20);
  int lost = 0;
  load_file([&lost](const std::string& bytes) {
    return bytes == "@920a*@9220*@9344*" || (bytes == "@9208*@9200*@9333*" && lost++ == 0);
  });
  EXPECT_EQ(texts_.back(),
            "Not verified: no answer from the chip. 1 of 3 values differs: 0xF800 (sent 0x33, chip 0xA5)");
  EXPECT_EQ(differences_, std::vector<std::string>{"0xF800 (sent 0x33, chip 0xA5)"});
  const auto again = again_;
  ASSERT_TRUE(again);
  chip_.silent = true;
  again();
  wire_.advance(10'000);
  EXPECT_EQ(texts_.back(), "Not verified: no answer from the chip") << "what was sent again is not known";
}

TEST_F(RegisterCheckTest, AChipThatWasAwayIsAskedForAllOfThemAgain) {
  load_file(
      [lost = 0](const std::string& bytes) mutable { return bytes == "@9208*@9201*@9322*" && lost++ < 2; });
  EXPECT_EQ(texts_.back(), "1 of 3 values differs: 0xF801 (sent 0x22, chip 0x3C)");
  chip_.values[0x800] = 0xA5;
  wire_.link.connection_changed();
  again_();
  wire_.advance(10'000);
  EXPECT_EQ(texts_.back(), "Verified: 3 of 3 values");
  EXPECT_EQ(chip_.values[0x800], 0x33);
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

TEST(RegisterFile, SkipsAndCountsWhatDoesNotFit) {
  const RegisterFile file = RegisterFile::parse(
      "0xF800=0x1A //A B\r\n"
      "\r\n"
      "0xf801=0x2b //x\n"
      "0xF802=0x1\r\n"
      "0xF8031=0x11 //five digits\n"
      "0xF804=0x123 //three\n"
      "  0x5=0x7//\n"
      "0xF806=0x08 //last line, no end");
  EXPECT_EQ(file.lines,
            (std::vector<RegisterFile::Line>{{0xF800, 0x1A}, {0xF801, 0x2B}, {5, 7}, {0xF806, 8}}));
  EXPECT_EQ(file.skipped, 3u);
  EXPECT_EQ(file.first_skipped, 4u);
}

}  // namespace
}  // namespace qv5123
