#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "support/chip_talk.h"
#include "support/desk_bench.h"
#include "support/temporary_folder.h"
#include "support/traffic_text.h"
#include "tuning/bit_editor.h"
#include "tuning/raw_access.h"
#include "tuning/raw_access_desk.h"
#include "tuning/register_script.h"
#include "tuning/script_player.h"
#include "tuning/userdata_parameters.h"

namespace qv5123 {
namespace {

constexpr std::pair<int, bool> kGesture[] = {{7, true}, {0, true},  {7, false},
                                             {3, true}, {0, false}, {3, false}};

/// The tools of the ISP tune page beside its settings.
class FrontTools : public test::DeskBench, ServiceArea::View, RawAccessDesk::View, ScriptPlayer::View {
 protected:
  FrontTools() {
    area_.attach(*this);
    raw_.attach(*this);
    player_.attach(*this);
  }
  void get_info(const char* address) {
    editor_.type_address(address);
    editor_.press_get_info();
    wire();
  }
  void append_text(const std::string& text) override { console_ += text; }
  void reveal_area() override { revealed_ = true; }
  void show_answer(Access, const std::string& field) override { answers_.push_back(field); }
  void show_written(int byte) override { shown_ = byte; }
  void show_playing(bool playing) override { playing_ = playing; }

  ServiceArea area_{host_};
  BitEditor editor_{host_, area_};
  RawAccessDesk raw_{host_, area_};
  ScriptPlayer player_{host_};
  std::string console_;  // of the page
  bool revealed_ = false;
  std::vector<std::string> answers_;
  int shown_ = -1;
  bool playing_ = false;
};

TEST_F(FrontTools, WriteRegisters) {
  raw_.write(Access::isp_byte, "A2c", "3F");
  EXPECT_EQ(shown_, 0x3F);
  raw_.write(Access::isp_word, "123", "12345");
  EXPECT_EQ(wire(), "@920a*@922c*@933f*@9501*@9523*@9600*@9600*");
  raw_.write(Access::isp_byte, "fff", "0B");
  EXPECT_EQ(host_.doc.front_gamma_level, 11.0);
  raw_.write(Access::sensor, "3012", "01F4");
  EXPECT_EQ(wire(), "@9830*@9812*@9901*@99f4*");
  EXPECT_EQ(console_, "\r\nSensor Write :\r\n0x3012, 0500 (0x3012, 0x01f4)");
}

TEST_F(FrontTools, AnswersGoToTheMainConsoleAndTheFieldThatAsked) {
  answer("@9409*@9422*", "12");
  raw_.read(Access::isp_byte, "922");
  wire();
  answer("@9b0a*@9b10*@9b0a*@9b11*", "a1b2");
  raw_.dump("A10", "A11");
  wire();
  EXPECT_EQ(host_.console, "0xF922 = 0x12\r\n0xFA10 = 0xA1\r\n0xFA11 = 0xB2\r\n");
  host_.console.clear();
  answer("@9b01*@9b00*@9b01*@9bfa*", std::string(502, '1'));
  raw_.dump("100", "1FA");
  wire();
  EXPECT_EQ(host_.console, "Dump 0xF100..0xF1FA: the answer is too long, it can hold 250 registers.\r\n");
  host_.console.clear();
  fake_.sender.connected = false;
  raw_.dump("100", "1FA");
  wire();
  EXPECT_EQ(host_.console, "") << "the answer to the dump before is none to this one";
  fake_.sender.connected = true;
  raw_.read(Access::isp_word, "0000");
  raw_.read(Access::sensor, "1234");
  EXPECT_EQ(wire(2000), "@9700*@9700*@9a12*@9a34*");
  EXPECT_EQ(host_.statuses,
            (std::vector<std::string>{"0xF922: 0x12", "No answer from 0xF000", "No answer from 0x1234"}));
  EXPECT_EQ(answers_, std::vector<std::string>{"12"});
}

TEST_F(FrontTools, BitsAreThoseOfTheAddressThatWasRead) {
  EXPECT_FALSE(editor_.bits());
  answer("@9405*@9423*", "a5");
  get_info("523");
  EXPECT_EQ(editor_.bits(), 0xA5);
  EXPECT_EQ(console_, "a5 ");
  editor_.click(1, true);
  EXPECT_EQ(wire(), "@9205*@9223*@93a7*");
  EXPECT_EQ(fake_.sender.writes.back(), "@93a7*") << "the address leaves in a flush of its own";
  EXPECT_EQ(editor_.bits(), 0xA7);

  editor_.type_address("524");
  EXPECT_FALSE(editor_.bits());
  editor_.click(1, false);
  EXPECT_EQ(wire(), "");
  EXPECT_EQ(host_.last_status(), "The bits of 0xF524 are not known: press \"Get Info\" first.");
  host_.statuses.clear();
  editor_.type_address("000");
  editor_.click(1, true);
  EXPECT_EQ(wire(), "");
  EXPECT_TRUE(host_.statuses.empty());
}

TEST_F(FrontTools, BitsAreUnknownWithoutAnAnswer) {
  answer("@9405*@9423*", "a5");
  get_info("523");
  for (const char* no_byte : {"", "1x"}) {
    answer("@9405*@9423*", no_byte);
    get_info("523");
    EXPECT_FALSE(editor_.bits()) << "what it holds now nobody knows";
  }
  EXPECT_EQ(host_.last_status(), "No answer from 0xF523");
  EXPECT_EQ(host_.statuses.front(), "0xF523: 0xA5");
  EXPECT_EQ(console_, "a5 a5 a5 ");
  answer("@9405*@9423*", "0c");
  editor_.press_get_info();
  editor_.type_address("5230");
  EXPECT_EQ(editor_.bits(), std::nullopt);
  wire();
  EXPECT_EQ(editor_.bits(), 0x0C) << "of which the first three digits count";
  editor_.press_get_info();
  editor_.type_address("524");
  wire();
  EXPECT_FALSE(editor_.bits()) << "the answer came too late";
  EXPECT_EQ(console_, "a5 a5 a5 c c ");
}

TEST_F(FrontTools, TheServiceGestureIsMadeAtAddress0) {
  host_.doc.user_data.set_entry(553, 0xAB);
  for (const auto& [bit, set] : kGesture) editor_.click(bit, set);
  EXPECT_EQ(wire(), "");
  editor_.type_address("5C1");
  editor_.press_get_info();
  EXPECT_TRUE(revealed_);
  EXPECT_EQ(wire(), "@9405*@94c1*") << "read all the same";
  EXPECT_EQ(console_, "Outdoor In Threshold : 0xAB\r\n0 ");
}

TEST_F(FrontTools, ParametersAreStoredWrittenSentAndReadBack) {
  area_.select(33);
  area_.set(33, "5E");
  EXPECT_EQ(wire(), "") << "the other byte comes from no file";
  EXPECT_EQ(image().entry(581), 0);
  ASSERT_EQ(host_.user.questions.size(), 1u);
  EXPECT_EQ(host_.user.questions[0].preferred, Answer::no);
  EXPECT_NE(host_.user.questions[0].text.find("\nContrast Knee Thr_H = 0x00\n"), std::string::npos);
  host_.user.answers = {Answer::yes};
  area_.set(33, "5E");
  EXPECT_EQ(wire(), "@fa01*@bc00*@bc5e*@fa00*");
  EXPECT_EQ(host_.last_status(), "Contrast Knee Thr_L: 2 registers sent");
  EXPECT_EQ(host_.written.entry(581), 0x5E);
  EXPECT_EQ(console_, "Contrast Knee_Thr_L : 0x00\r\nContrast Knee Thr_L : 0x5E\r\n");
  console_.clear();
  host_.current_directory = UserDataImage{};
  area_.set(33, "5F");
  EXPECT_EQ(wire(), "@fa01*@bc00*@bc5f*@fa00*");
  EXPECT_EQ(console_, "Contrast Knee Thr_L : 0x00\r\n") << "the other file wins";
}

TEST(UserdataParameters, LeaveWithTheirGroupInOrder) {
  UserDataImage image;
  for (std::size_t i = 0; i < UserDataImage::kSize; ++i) image.set_entry(i, static_cast<int>(i));
  // Rows by their places in the list, and the low bytes of the entries that go along.
  const std::map<std::size_t, std::string> sent{{0, "@fa01*@ac29*@fa00*"},
                                                {9, "@fa01*@b330*@b331*@b332*@fa00*"},
                                                {20, "@fa01*@8cdb*@8cdc*@8cdd*@8cde*@fa00*"},
                                                {23, "@fa01*@66c4*@66c5*@fa00*"},
                                                {26, "@fa01*@ba3e*@ba3f*@ba40*@ba41*@fa00*"}};
  for (const auto& [row, bytes] : sent) EXPECT_EQ(bytes_of(parameter_traffic(row, image)), bytes) << row;
  // The chip knows by itself which register keeps which entries.
  test::ListeningChip chip;
  for (std::size_t row = 0; row < kUserdataParameterCount; ++row) {
    const std::size_t entry = userdata_parameters()[row].entry;
    test::ask(chip, bytes_of(parameter_traffic(row, image)));
    EXPECT_EQ(chip.state().kept_data.entry(entry), image.entry(entry)) << userdata_parameters()[row].name;
  }
}

TEST_F(FrontTools, ARegisterFileWaitsForTheWireAndCanBeStopped) {
  const test::TemporaryFolder folder;
  const auto script = folder.write("script.txt", "001 01\n002 02\n003 03\n004 04");
  host_.user.paths = {folder.path() / "no such file", script, script};
  player_.press();
  EXPECT_EQ(wire(), "") << "a file that is not there";
  EXPECT_FALSE(playing_);
  player_.press();
  EXPECT_TRUE(playing_);
  fake_.link.send(Traffic(40, {{0xFA, 1}}));
  fake_.advance(2050);
  EXPECT_EQ(fake_.link.jobs_waiting(), 1u) << "one line at a time";
  EXPECT_EQ(host_.progress.back(), 25);
  player_.press();
  EXPECT_FALSE(playing_);
  EXPECT_EQ(wire().substr(40 * 6), "@9200*@9201*@9301*@9200*@9202*@9302*");
  EXPECT_EQ(host_.last_status(), "Register file: stopped.");
  player_.press();
  fake_.advance(260);
  fake_.sender.connected = false;
  wire();
  EXPECT_EQ(host_.last_status(), "Register file: line 2 did not reach the chip.");
  EXPECT_FALSE(playing_);
  fake_.sender.connected = true;
  host_.user.paths = {script};
  player_.press();
  wire(2000);
  EXPECT_EQ(host_.last_status(), "script.txt: 4 lines sent");
}

TEST(RawAccess, FieldsAreReadByTheirLengthAndWhatWouldBeMisreadIsTold) {
  EXPECT_EQ(byte_of_field("7"), 0x70);
  EXPECT_EQ(byte_of_field(""), 0);
  EXPECT_EQ(address_of_field("9G2"), 0x902);
  EXPECT_EQ(address_of_field("F9225"), 0xF92);
  EXPECT_EQ(word_of_field("123"), 0x123);
  EXPECT_EQ(word_of_field("bEeF"), 0xBEEF);
  EXPECT_EQ(word_of_field("12345"), 0);
  EXPECT_EQ(word_of_field("\xC3\xA9"
                          "12\xE2\x82\xAC"),
            0x0120)
      << "a character counts once, however it is coded";

  for (const char* right : {"000", "a2C", "F92"})
    EXPECT_TRUE(reads_as_typed(HexForm::address, right)) << right;
  for (const char* wrong : {"", "A2", "F1A2", "0x1A2", "9G2", "12\xC3\xA9", " 12"})
    EXPECT_FALSE(reads_as_typed(HexForm::address, wrong)) << wrong;
  for (const char* right : {"00", "123", "bEeF"}) EXPECT_TRUE(reads_as_typed(HexForm::word, right)) << right;
  for (const char* wrong : {"", "5", "12345", "0x12", "-5"})
    EXPECT_FALSE(reads_as_typed(HexForm::word, wrong)) << wrong;
  EXPECT_TRUE(reads_as_typed(HexForm::byte, "3f"));
  EXPECT_FALSE(reads_as_typed(HexForm::byte, "3"));
  EXPECT_FALSE(reads_as_typed(HexForm::byte, "3F0"));
}

TEST(RawAccess, AnswersAreShownAsLines) {
  EXPECT_EQ(answer_text(Access::isp_word, 0x922, "0aBc"), "0xF922 = 0x0ABC\r\n");
  EXPECT_EQ(answer_text(Access::isp_word, 0x922, "123"), "");
  EXPECT_EQ(answer_text(Access::isp_byte, 0x922, "122"), "") << "which of them was doubled?";
  EXPECT_FALSE(answer_field(Access::isp_byte, "1x"));
  EXPECT_EQ(answer_field(Access::isp_byte, "00ff0c"), "0C");
  EXPECT_EQ(dump_text(0x0FE, 0x100, "010203"), "0xF0FE = 0x01\r\n0xF0FF = 0x02\r\n0xF100 = 0x03\r\n");
  EXPECT_TRUE(dump_text(0x100, 0x1F9, std::string(500, '1')).ends_with("\r\n0xF1F9 = 0x11\r\n"));
}

TEST(ServiceGesture, OnlyTheWholeSequenceAtItsAddressReveals) {
  ServiceGesture gesture;
  const auto play = [&gesture] {
    for (const auto& [bit, set] : kGesture) gesture.click(bit, set);
  };
  gesture.click(7, true);
  play();
  EXPECT_TRUE(gesture.get_info(0x5C1)) << "its first click may come twice";
  EXPECT_FALSE(gesture.get_info(0x5C1));
  play();
  EXPECT_FALSE(gesture.get_info(0x5C0));
  play();
  gesture.click(1, true);
  EXPECT_FALSE(gesture.get_info(0x5C1));
}

/// What a script sends, tick by tick; "-" for a tick that sends nothing.
std::string played(const std::string& text) {
  RegisterScript script(std::make_unique<std::istringstream>(text));
  std::string sent;
  for (int tick = 0; tick < 20; ++tick) {
    const RegisterScript::Step step = script.tick();
    if (step.finished) return sent;
    sent += step.batch.empty() ? "-" : frames(step.batch);
  }
  return sent + " and no end";
}

TEST(RegisterScript, WritesALineATickAndKeepsItsOddities) {
  EXPECT_EQ(played("1A2 3F remark\n\r\n\n0bc=0D"), "@9201*@92a2*@933f*--@9200*@92bc*@930d*");
  EXPECT_EQ(played(std::string("1\0002?zF", 6)), "@9201*@9202*@930f*");

  // A last line break repeats the data at address 0.
  const std::string once = "@9201*@92a2*@933f*", repeated = "@9200*@9200*@933f*";
  EXPECT_EQ(played("1A2,3F\r\n"), once + repeated);
  EXPECT_EQ(played("1A2,3F\n\n"), once + "--")
      << "a blank last line is skipped instead, once more at the end";

  // Lines leave their rest behind.
  EXPECT_EQ(played("1A2,3F\n456"), "@9201*@92a2*@933f*@9204*@9256*@933f*");
  const std::string longest = "001,11" + std::string(93, ' ');
  EXPECT_EQ(played(longest + "002,22"), "@9200*@9201*@9311*@9200*@9202*@9322*");
}

}  // namespace
}  // namespace qv5123
