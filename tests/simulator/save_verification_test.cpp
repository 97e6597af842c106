#include <gtest/gtest.h>

#include "state/image_check.h"
#include "state/value_states.h"
#include "support/chip_talk.h"
#include "support/fake_page_host.h"
#include "tuning/lens_desk.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

using End = Verification::End;

/// A page's desk on a line to the simulated chip that loses what the test says.
class SaveVerification : public testing::Test {
 protected:
  SaveVerification() {
    wire_.sender.chip = [this](const std::string& bytes) {
      if (loses_ && loses_(bytes)) return;
      const std::string reply = test::ask(chip_, bytes);
      wire_.receive(spoils_ ? spoils_(reply) : reply);
    };
    host_.doc.user_data = chip_.state().user_data;
    host_.doc.user_data.mark_loaded();
    states_.verify_saves(true);
    states_.on_verification([this](TuningDesk* desk, const Verification* found) {
      if (found) found_ = *found;
      if (found) text_ = verification_text(desk->model().fields(), *found);
    });
  }
  std::unique_ptr<TuningDesk> open(const char* name) {
    auto desk = make_desk(name, host_, host_.doc);
    desk->watch(states_);
    return desk;
  }
  Task<> save(TuningDesk& desk) { co_await desk.send_save(desk.full_save(), "done"); }
  /// Saves, and lets the read-back come to its end.
  void save_and_verify(TuningDesk& desk) {
    host_.user.answers = {Answer::yes};
    desk.start_save(host_.user, save(desk));
    wire_.advance(90'000);
  }
  void repair(TuningDesk& desk) {
    desk.start_repair(*found_);
    wire_.advance(90'000);
  }
  std::string wire() {
    const std::string all = wire_.sender.wire();
    return all.substr(std::exchange(seen_, all.size()));
  }
  Known known(const char* page, std::size_t field) {
    return states_.state(states_.page_named(page), field).chip.how;
  }

  test::FakeWire wire_;
  test::FakePageHost host_{wire_};
  test::ListeningChip chip_;
  ValueStates states_{wire_.link};
  std::function<bool(const std::string&)> loses_;
  std::function<std::string(std::string)> spoils_;
  std::optional<Verification> found_;
  std::string text_;
  std::size_t seen_ = 0;
};

TEST_F(SaveVerification, FollowsTheStatedSequence) {
  const auto desk = open("lsc");
  desk->type(0, 0x123);
  states_.verify_saves(false);
  save_and_verify(*desk);
  const std::string stated = wire();
  EXPECT_EQ(known("lsc", 0), Known::sent);
  EXPECT_EQ(found_, std::nullopt);
  states_.verify_saves(true);
  save_and_verify(*desk);
  EXPECT_EQ(wire(), stated + "@6b00*");
  EXPECT_EQ(text_, "Verified: 6 of 6 values");
  EXPECT_EQ(known("lsc", 0), Known::verified);
  EXPECT_EQ(host_.last_status(), "done");

  const auto gamma = open("gamma");
  save_and_verify(*gamma);
  EXPECT_EQ(text_, "Verified: 66 of 66 values, 1 more not reported by the chip");
  EXPECT_EQ(known("gamma", 0), Known::sent);
}

TEST_F(SaveVerification, SaysWhatTheChipDoesNotHave) {
  const auto desk = open("lsc");
  desk->type(0, 0x123);
  loses_ = [](const std::string& bytes) { return bytes == "@6401*@6423*"; };
  save_and_verify(*desk);
  wire();
  EXPECT_EQ(found_->end, End::differs);
  EXPECT_NE(text_.find("differ"), std::string::npos) << text_;
  EXPECT_EQ(known("lsc", 0), Known::read);
  EXPECT_TRUE(states_.mark(states_.page_named("lsc"), 0).differs_from_chip);

  // What the page holds by now is not what was saved.
  desk->type(0, 7);
  int lost = 0;
  loses_ = [&](const std::string& bytes) { return bytes.starts_with("@6401*@6423*@64") && ++lost < 3; };
  repair(*desk);
  EXPECT_EQ(found_->end, End::verified) << text_;
  EXPECT_EQ(chip_.state().kept_data.word(440), 0x123);
  EXPECT_EQ(desk->model().numbers()[0], 7);
}

TEST_F(SaveVerification, DamagedAnswersProveNothing) {
  const auto desk = open("lsc");
  int answers = 0;
  spoils_ = [&](std::string reply) {
    if (reply.size() < 20) return reply;
    ++answers;
    if (answers == 1) reply[3] = 'x';
    if (answers == 2) reply[4] = reply[4] == '7' ? '8' : '7';
    return reply;
  };
  save_and_verify(*desk);
  EXPECT_EQ(answers, 3);
  EXPECT_EQ(found_->end, End::verified);

  spoils_ = [](std::string reply) { return reply.substr(0, reply.size() / 2) + "^"; };
  save_and_verify(*desk);
  EXPECT_EQ(text_, "Not verified: the chip's answers were damaged on the line");
  EXPECT_EQ(known("lsc", 0), Known::sent);
  loses_ = [](const std::string&) { return true; };
  save_and_verify(*desk);
  EXPECT_EQ(text_, "Not verified: no answer from the chip");
  EXPECT_EQ(known("lsc", 0), Known::sent);
}

TEST_F(SaveVerification, WhatIsSentMeanwhileCounts) {
  const auto desk = open("lsc");
  desk->start_save(host_.user, save(*desk));
  wire_.advance(520);  // the request waits for its turn
  auto& lens = static_cast<LensDesk&>(*desk);
  desk->type(0, 55);
  lens.send_row(LensControl::parameter1);
  wire_.advance(5000);
  EXPECT_EQ(found_->end, End::verified) << text_;
  EXPECT_EQ(states_.state(states_.page_named("lsc"), 0).chip.number, 55);
}

TEST_F(SaveVerification, TheWholeUserDataIsReadBackPageByPage) {
  ImageCheck check(host_, states_);
  const auto verify = [&] {
    Flow flow(check.verify());
    wire_.advance(30'000);
    return check.text();
  };
  check.sent(host_.doc.user_data);
  EXPECT_EQ(verify(), "Verified: 0 of 0 values, 0 more not reported by the chip");
  EXPECT_EQ(known("lsc", 0), Known::verified);
  const std::size_t entry = make_model("lsc")->fields()[0].entries().back();
  host_.doc.user_data.set_entry(entry, host_.doc.user_data.entry(entry) ^ 0x15);
  check.sent(host_.doc.user_data);
  EXPECT_EQ(verify(), "1 of 0 values differs: lsc Parameter-1 RED (sent 0, chip 0)");
  EXPECT_EQ(known("lsc", 0), Known::read);
  // What the other pages have can be sent again all the same.
  spoils_ = [](std::string reply) { return reply.size() / 10 == 35 ? reply.substr(0, 99) + "^" : reply; };
  EXPECT_EQ(verify(),
            "1 of 0 values differs: lsc Parameter-1 RED (sent 0, chip 0). Not verified: the chip's answers "
            "were damaged on the line (gamma)");
  Flow repairing(check.repair(1));
  wire_.advance(90'000);
  EXPECT_EQ(check.text(), "Not verified: the chip's answers were damaged on the line (gamma)");
  spoils_ = {};
  verify();
  EXPECT_TRUE(check.text().starts_with("Verified: ")) << check.text();
  EXPECT_EQ(chip_.state().kept_data.entry(entry), host_.doc.user_data.entry(entry));
  loses_ = [](const std::string&) { return true; };
  EXPECT_EQ(verify(), "Not verified: no answer from the chip (front)");
}

class EveryPage : public SaveVerification, public testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(SaveVerification, EveryPage, testing::ValuesIn(kTuningPages),
                         [](const auto& page) { return std::string(page.param); });

TEST_P(EveryPage, IsRepairedOnALineThatLosesWrites) {
  const auto desk = open(GetParam());
  for (std::size_t i = 0; i < desk->model().fields().size(); ++i)
    if (desk->model().fields()[i].saved) desk->type(i, desk->model().numbers()[i] == 1 ? 2 : 1);
  int writes = 0;
  loses_ = [&](const std::string& bytes) {
    const bool is_bracket = bytes.starts_with("@f9") || bytes.starts_with("@fa");
    return !is_bracket && writes++ % 4 == 0;
  };
  save_and_verify(*desk);
  ASSERT_EQ(found_->end, End::differs) << text_;
  loses_ = {};
  repair(*desk);
  EXPECT_EQ(found_->end, End::verified) << text_;
  UserDataImage saved = chip_.state().kept_data;
  desk->model().store(saved);
  for (std::size_t i = 0; i < desk->model().fields().size(); ++i) {
    const FieldInfo& field = desk->model().fields()[i];
    if (!field.saved || !field.has_reply()) continue;
    for (const std::size_t entry : field.entries())
      EXPECT_EQ(chip_.state().kept_data.entry(entry), saved.entry(entry)) << field.name;
  }
}

}  // namespace
}  // namespace qv5123
