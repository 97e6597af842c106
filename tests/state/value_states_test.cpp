#include "state/value_states.h"

#include <gtest/gtest.h>

#include "link/indirect_access.h"
#include "support/desk_bench.h"
#include "support/desk_fields.h"
#include "tuning/awb_desk.h"
#include "tuning/front_desk.h"
#include "tuning/gamma_desk.h"
#include "tuning/lens_desk.h"
#include "tuning/matrix_desk.h"

namespace qv5123 {
namespace {

constexpr std::size_t kRed1 = 0;  // "parameter1.r" of the lens shading page

class ValueStatesTest : public test::DeskBench {
 protected:
  std::size_t lens() const { return states_.page_named("lsc"); }
  ValueState red1() { return states_.state(lens(), kRed1); }
  Known how() { return red1().chip.how; }
  /// "Not sent", as who looks at the page's first value sees it.
  std::string marks(std::size_t field = kRed1) {
    const ValueMark mark = states_.mark(lens(), field);
    return std::string(mark.unsent ? "unsent " : "") + (mark.differs_from_chip ? "chip " : "") +
           (mark.differs_from_file ? "file " : "") + "[" + mark.others + "]";
  }
  /// The chip answers the page's trigger with 20 and five zeros.
  void load(TuningDesk& desk) {
    load_desk(desk, "001400000000000000000000");
    wire();
  }

  ValueStates states_{fake_.link};
};

TEST_F(ValueStatesTest, FollowsAValueThroughPageChipAndFile) {
  UserDataImage file;
  file.set_word(440, 30);
  file.mark_loaded();
  states_.file_is(file);
  EXPECT_EQ(red1().page, std::nullopt) << "the page was not opened";
  EXPECT_EQ(red1().file, 30);
  EXPECT_EQ(how(), Known::nothing);

  LensDesk desk(host_, image());
  desk.watch(states_);
  EXPECT_EQ(marks(), "file [file 30]") << "0 in the page; of the chip nothing is known";
  load(desk);
  EXPECT_EQ(how(), Known::read);
  EXPECT_EQ(marks(), "file [chip 20, file 30]");
  desk.type(kRed1, 30);
  EXPECT_EQ(marks(), "unsent chip [chip 20, file 30]");
  desk.send_row(LensControl::parameter1);
  EXPECT_EQ(how(), Known::read) << "it is still waiting for its turn";
  wire();
  EXPECT_EQ(how(), Known::sent);
  EXPECT_EQ(marks(), "[]");
  EXPECT_FALSE(states_.unsent_or_unsaved(lens()));
  desk.type(4, 7);
  EXPECT_TRUE(states_.unsent_or_unsaved(lens()));
}

TEST_F(ValueStatesTest, KnowsNothingOfAChipThatWasAway) {
  LensDesk desk(host_, image());
  desk.watch(states_);
  load(desk);
  fake_.link.connection_changed();
  EXPECT_EQ(how(), Known::nothing);
  desk.type(kRed1, 30);
  EXPECT_EQ(marks(), "unsent []") << "typed, whatever the chip holds";

  // What was being sent when the port went, and what never left whole.
  desk.send_row(LensControl::parameter1);
  fake_.advance(10);
  fake_.link.connection_changed();
  wire();
  EXPECT_EQ(how(), Known::nothing);
  load(desk);
  fake_.sender.cuts_short = true;
  desk.send_row(LensControl::parameter1);
  wire();
  EXPECT_EQ(how(), Known::nothing);
  EXPECT_EQ(states_.state(lens(), 3).chip.how, Known::read) << "another row";
}

TEST_F(ValueStatesTest, AnAnswerIsOlderThanWhatWasSentSinceItWasAsked) {
  LensDesk desk(host_, image());
  desk.watch(states_);
  desk.start_load();
  fake_.advance(60);
  desk.type(kRed1, 30);
  desk.send_row(LensControl::parameter1);
  fake_.advance(60);
  fake_.receive("~001400000000000000050000^");
  fake_.advance(300);
  EXPECT_EQ(how(), Known::sent);
  EXPECT_EQ(red1().chip.number, 30);
  EXPECT_EQ(states_.state(lens(), 4).chip.how, Known::read);
}

TEST_F(ValueStatesTest, WhatNobodyDescribedIsNeverTakenForHarmless) {
  LensDesk desk(host_, image());
  desk.watch(states_);
  const auto after = [&](const Batch& batch) {
    load(desk);
    fake_.link.send(batch);
    wire();
    return how();
  };
  EXPECT_EQ(after({{0x65, 1}, {0x65, 2}}), Known::read) << "the other row's register";
  EXPECT_EQ(states_.state(lens(), 3).chip.how, Known::nothing);
  EXPECT_EQ(after({{0x64, 1}}), Known::nothing);
  EXPECT_EQ(after(isp_write(0x922, 0xCC)), Known::nothing) << "factory reset";
  EXPECT_EQ(after(isp_write(0xA29, 0x80)), Known::read) << "the color picker";
  EXPECT_EQ(after(isp_wide_write(0xA29, 1)), Known::nothing);
  EXPECT_EQ(after(sensor_write(0x3000, 1)), Known::nothing);
  EXPECT_EQ(after(isp_read_request(0x922)), Known::read);
  EXPECT_EQ(after({{reg::kOsdKey, 4}}), Known::nothing) << "the chip's own menu";
  EXPECT_EQ(after({{0xF0, 1}}), Known::nothing) << "a register that no page has";
  EXPECT_EQ(after({{0xA2, 1}}), Known::read) << "AE Info";
  EXPECT_EQ(after({}), Known::read);
  // A note without values.
  AwbDesk awb(host_, image());
  load(desk);
  desk.click_pal();
  wire();
  EXPECT_EQ(how(), Known::read);
  awb.press("UP", kAwbUp);
  wire();
  EXPECT_EQ(how(), Known::nothing) << "the chip's own menu changes values of every page";
  load(desk);
  fake_.link.send_letter('V');
  wire();
  EXPECT_EQ(how(), Known::nothing) << "what was typed to the chip's own prompt";
}

TEST_F(ValueStatesTest, WhatIsSentCountsAsTheChipTakesIt) {
  image().mark_loaded();
  FrontDesk front(host_, image());
  front.watch(states_);
  const auto place = [&](const char* name) { return test::field_place(front, name); };
  const auto on_chip = [&](const char* name) {
    const ChipValue chip = states_.state(states_.page_named("front"), place(name)).chip;
    return chip.how == Known::sent ? chip.number : -1;
  };
  front.type(place("ir_on_off"), 0x106);
  front.start_save(host_.user, front.save(host_));
  wire(5000);
  EXPECT_EQ(on_chip("ir_on_off"), 6) << "of a number the low byte";
  EXPECT_EQ(on_chip("flag.hue"), -1) << "not in the save";
  front.type(place("led_dimmer"), 200);
  front.use(FrontControl::led_dimmer);
  wire();
  EXPECT_EQ(on_chip("led_dimmer"), 88);

  image().set_entry(44, 1);
  GammaDesk gamma(host_, image(), host_.doc.front_gamma_level);
  gamma.watch(states_);
  gamma.choose_channel(GammaChannel::rgb);
  gamma.start_save(host_.user, gamma.save());
  wire(9000);
  EXPECT_EQ(states_.state(states_.page_named("gamma"), 0).chip.number, 1) << "the channel that was loaded";
  EXPECT_FALSE(states_.mark(states_.page_named("gamma"), 0).unsent) << "no save sends the chosen one";
}

TEST_F(ValueStatesTest, ARowOfTheMatrixIsOfItsModeAndLight) {
  MatrixDesk desk(host_, image());
  desk.watch(states_);
  desk.choose_mode(kCvbs);
  desk.choose_light(1);
  desk.type_code(1, 0, "0x0123");
  desk.set_row(MatrixControl::green_row, host_.user);
  wire();
  std::vector<std::string> sent;
  const std::size_t page = states_.page_named("matrix");
  for (std::size_t i = 0; i < states_.fields(page).size(); ++i)
    if (states_.state(page, i).chip.how == Known::sent) sent.push_back(states_.fields(page)[i].name);
  EXPECT_EQ(sent, (std::vector<std::string>{"cvbs.light1.g[0]", "cvbs.light1.g[1]", "cvbs.light1.g[2]"}));
}

TEST_F(ValueStatesTest, TellsOfEverythingThatLeft) {
  std::vector<WriteEvent> events;
  states_.on_write([&](const WriteEvent& event) { events.push_back(event); });
  LensDesk desk(host_, image());
  desk.watch(states_);
  load(desk);
  events.clear();
  desk.type(kRed1, 30);
  desk.send_row(LensControl::parameter1);
  fake_.link.send(Batch{{0x64, 9}});
  wire();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].page + ", " + events[0].control, "lsc, Parameter-1");
  ASSERT_EQ(events[0].values.size(), 3u);
  EXPECT_EQ(events[0].values[0].name, "parameter1.r");
  EXPECT_EQ(events[0].values[0].old, 20);
  EXPECT_EQ(events[0].values[0].now, 30);
  EXPECT_EQ(events[0].batches, Traffic{desk.control_traffic(0)});
  EXPECT_EQ(events[1].page, "");
  EXPECT_EQ(events[1].batches, (Traffic{{{0x64, 9}}}));
}

TEST_F(ValueStatesTest, TheWholeImageReachesEveryPage) {
  UserDataImage sent;
  sent.set_word(440, 30);
  sent.set_entry(462, 3);
  states_.image_sent(sent);
  EXPECT_EQ(how(), Known::sent);
  EXPECT_EQ(red1().chip.number, 30);
  EXPECT_EQ(states_.state(states_.page_named("front"), 2).chip.number, 2) << "the chip counts from 1";
}

}  // namespace
}  // namespace qv5123
