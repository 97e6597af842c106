#include "registers/register_desk_bench.h"

namespace qv5123 {
namespace {

using test::RegisterDeskTest;

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

TEST_F(RegisterDeskTest, WhatWasReadBeforeTheChipWasResetIsOlderUntilItIsReadAgain) {
  open_and_read();
  desk_->select_row(1);
  wire_.advance(300);
  EXPECT_FALSE(sheet().older_than_chip());
  desk_->chip_was_reset();
  desk_->choose_category(1);
  wire_.advance(300);
  EXPECT_FALSE(sheet().older_than_chip()) << "nothing of this one had been read";
  desk_->choose_category(0);
  wire_.advance(300);
  EXPECT_TRUE(sheet().older_than_chip()) << "its first register alone was read again";
  desk_->load_category();
  wire_.advance(2000);
  EXPECT_FALSE(sheet().older_than_chip());
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
  EXPECT_EQ(value_cell(1), u"0x3C");

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
  EXPECT_EQ(value_cell(1), u"") << "the row before is not touched";

  desk_->choose_category(1);
  desk_->type_address(u"0xF801");
  EXPECT_EQ(sheet().current(), 4u) << "the listed register takes over from the first with this address";
}

TEST_F(RegisterDeskTest, ARegisterOfAnotherCategoryIsListedAndReadThereAlone) {
  open_and_read();
  desk_->choose_register(4);
  EXPECT_EQ(sheet().category(), 1);
  EXPECT_EQ(sheet().name_text(), u"GAIN2");
  wire_.advance(300);
  EXPECT_EQ(chip_.requests, std::vector<int>{0x801}) << "not the category's first one before";
  EXPECT_EQ(value_cell(1), u"0x3C");
  EXPECT_EQ(sheet().value_of(0), u"0xA5") << "of the other category";
}

TEST_F(RegisterDeskTest, WhatHasChangedIsToldFromWhatWasFirstKnown) {
  const auto changed = [this] {
    std::vector<std::size_t> found;
    for (std::size_t reg = 0; reg < 5; ++reg)
      if (sheet().description().registers[reg].changed()) found.push_back(reg);
    return found;
  };
  using Registers = std::vector<std::size_t>;
  const auto read = [this](int value) {
    chip_.values[0x800] = value;
    desk_->read();
    wire_.advance(300);
  };
  open_and_read();
  EXPECT_EQ(changed(), Registers{});
  desk_->type_value(u"0x77");
  desk_->write();
  EXPECT_EQ(changed(), Registers{0}) << "nobody has looked since";
  read(0xA5);
  EXPECT_EQ(changed(), Registers{}) << "the chip did not take it";
  read(0x77);
  EXPECT_EQ(changed(), Registers{0});
  desk_->type_address(u"0xF801");
  desk_->type_value(u"0x3C");
  desk_->write();
  desk_->read();
  wire_.advance(300);
  EXPECT_EQ(changed(), (Registers{0, 1, 4})) << "what it was before is lost; two have this address";
  host_.user.paths = {folder_.write("r.txt", "0xF800=0x33 //\r\n0xF801=0x3D //\r\n")};
  desk_->load_file();
  wire_.advance(3000);
  EXPECT_EQ(changed(), Registers{0}) << "0xF800 was read since: it has not taken what the file gave";
}

}  // namespace
}  // namespace qv5123
