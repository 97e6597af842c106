#include <functional>

#include "registers/register_check.h"
#include "registers/register_desk_bench.h"

namespace qv5123 {
namespace {

class RegisterCheckTest : public test::RegisterDeskTest {
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

}  // namespace
}  // namespace qv5123
