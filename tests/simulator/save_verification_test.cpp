#include <gtest/gtest.h>

#include <random>

#include "simulator/faults.h"
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
    states_.on_verification([this](TuningDesk& desk, const Verification* found) {
      if (found) found_ = *found;
      if (found) text_ = verification_text(desk.model().fields(), *found);
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
  /// The line loses bytes, either way, as the seed says.
  void lose_bytes(double rate, std::uint64_t seed) {
    const auto lossy = [](const FaultRates& rates, std::uint64_t s) {
      return [line = FaultInjector(rates, s)](const std::string& text) mutable {
        line.put({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, {});
        const auto left = line.take({});
        return std::string(left.begin(), left.end());
      };
    };
    const FaultRates rates{.drop = rate};
    wire_.sender.chip = [this, there = lossy(rates, 2 * seed),
                         back = lossy(rates, 2 * seed + 1)](const std::string& bytes) mutable {
      wire_.receive(back(test::ask(chip_, there(bytes))));
    };
  }
  void type_other_values(TuningDesk& desk) {
    for (std::size_t i = 0; i < desk.model().fields().size(); ++i)
      if (desk.model().fields()[i].saved) desk.type(i, desk.model().numbers()[i] == 1 ? 2 : 1);
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
  const auto repair_once = [&] {
    Flow flow(check.repair(1));
    wire_.advance(90'000);
    return check.text();
  };
  check.sent(host_.doc.user_data);
  EXPECT_EQ(verify(), "Verified: 458 of 458 values, 75 more not reported by the chip");
  EXPECT_EQ(known("lsc", 0), Known::verified);
  // A slope that no chip takes from the page: as it was sent, it is no difference.
  const std::vector<std::size_t> slope = make_model("awb")->fields()[0].entries();
  host_.doc.user_data.set_entry(slope[0], 5);
  host_.doc.user_data.set_entry(slope[1], 0);
  check.sent(host_.doc.user_data);
  test::ask(chip_, "@0d05*@0d00*");
  EXPECT_EQ(verify(), "Verified: 458 of 458 values, 75 more not reported by the chip");
  test::ask(chip_, "@0d06*@0d00*");
  EXPECT_TRUE(verify().starts_with("1 of 458 values differs: awb ")) << check.text();
  EXPECT_EQ(repair_once(), "Verified: 458 of 458 values, 75 more not reported by the chip")
      << "as the image has it";
  const std::size_t entry = make_model("lsc")->fields()[0].entries().back();
  host_.doc.user_data.set_entry(entry, host_.doc.user_data.entry(entry) ^ 0x15);
  check.sent(host_.doc.user_data);
  EXPECT_EQ(verify(), "1 of 458 values differs: lsc Parameter-1 RED (sent 1229, chip 1240)");
  EXPECT_EQ(known("lsc", 0), Known::read);
  // What the other pages have can be sent again all the same.
  spoils_ = [](std::string reply) { return reply.size() / 10 == 35 ? reply.substr(0, 99) + "^" : reply; };
  EXPECT_EQ(
      verify(),
      "1 of 370 values differs: lsc Parameter-1 RED (sent 1229, chip 1240). Not verified: the chip's answers "
      "were damaged on the line (gamma)");
  EXPECT_EQ(repair_once(), "Not verified: the chip's answers were damaged on the line (gamma)");
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

TEST_P(EveryPage, IsVerifiedOnALineThatLosesBytesAndNeverLies) {
  int verified = 0;
  for (std::uint64_t seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    const auto desk = open(GetParam());
    // Every second time what the chip has before are other values.
    if (seed % 2 == 0) type_other_values(*desk);
    // A curve of gamma is right only where each of its 22 words has arrived: one that is lost shifts the
    // rest.
    lose_bytes(GetParam() == std::string("gamma") ? 0.002 : 0.01, seed);
    save_and_verify(*desk);
    for (int times = 0; times < 2; ++times)
      if (!found_->to_repair().empty()) repair(*desk);
    if (found_->end != End::verified) continue;
    ++verified;
    // What the chip works with, of the values that a save sends and the chip reports.
    const UserDataImage& chip = chip_.state().user_data;
    UserDataImage saved = chip;
    desk->model().store(saved);
    for (const FieldInfo& field : desk->model().fields()) {
      if (!field.saved || !field.has_reply()) continue;
      for (const std::size_t entry : field.entries())
        EXPECT_EQ(chip.entry(entry), saved.entry(entry)) << field.name;
    }
  }
  EXPECT_GE(verified, 3) << text_;
}

TEST_P(EveryPage, IsNotVerifiedWhereWhatDiffersIsWhatIsLost) {
  // Equal digits, among which a loss may have been anywhere, and different ones.
  for (const bool equal : {true, false}) {
    const auto desk = open(GetParam());
    std::vector<std::size_t> bytes;
    for (std::size_t i = 0; i < desk->model().fields().size(); ++i) {
      const FieldInfo& field = desk->model().fields()[i];
      if (field.saved && equal) desk->type(i, 0);
      if (field.saved && field.has_reply()) bytes.push_back(static_cast<std::size_t>(field.reply));
    }
    const std::size_t differs = bytes[bytes.size() / 2];
    for (const std::size_t digits : {1u, 2u}) {
      spoils_ = [&](std::string reply) {
        if (reply.size() > differs + 2) reply.erase(1 + differs, digits);  // whatever the chip has there
        return reply;
      };
      save_and_verify(*desk);
      EXPECT_EQ(found_->end, End::unclear) << text_;
      EXPECT_FALSE(found_->to_repair().empty());
    }
  }
}

struct PageRange {
  const char* name;
  int count;  ///< the page takes 0 .. count - 1 everywhere, or limits it
};
constexpr PageRange kRanges[] = {{"front", 8},    {"awb", 801},     {"dynamic", 8},
                                 {"gamma", 1024}, {"matrix", 4096}, {"lsc", 4096}};

class PageRoundTrip : public testing::TestWithParam<PageRange> {
 protected:
  /// The chip must report these numbers, so far as it reports them and they are kept at all.
  void expect_reported(const std::vector<int>& numbers) {
    const std::string block = test::ask(chip, frames({{page->texts().trigger, 0}}));
    ASSERT_TRUE(page->take_reply(block.substr(1, block.size() - 2))) << block;
    const std::vector<int> reported = page->numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      const FieldInfo& field = page->fields()[i];
      if (field.has_reply() && field.has_entry()) {
        EXPECT_EQ(reported[i], numbers[i]) << field.name;
      }
    }
  }
  void store(std::size_t field, int number, UserDataImage& image) const {
    const auto model = make_model(GetParam().name);
    model->load_all(image);
    model->set_number(field, number);
    model->store_field(field, image);
  }

  const std::unique_ptr<TuningModel> page = make_model(GetParam().name);
  test::FakeWire wire;
  test::FakePageHost host{wire};
  test::ListeningChip chip;
};

INSTANTIATE_TEST_SUITE_P(Pages, PageRoundTrip, testing::ValuesIn(kRanges),
                         [](const auto& range) { return std::string(range.param.name); });

TEST_P(PageRoundTrip, WhatIsSavedIsKeptForGoodAndReadBack) {
  page->load_all(chip.state().user_data);
  expect_reported(page->numbers());
  std::mt19937 random(5);
  for (int round = 0; round < 5; ++round) {
    CQV5123Doc document;
    UserDataImage& image = document.user_data;
    image = chip.state().user_data;
    image.mark_loaded();
    const auto store_all = [&](const auto& number_of) {
      for (std::size_t i = 0; i < page->fields().size(); ++i)
        if (page->fields()[i].saved && page->fields()[i].has_entry()) store(i, number_of(i), image);
    };
    store_all([&](std::size_t) { return static_cast<int>(random() % GetParam().count); });
    const auto desk = make_desk(GetParam().name, host, document);
    desk->model().load_all(image);
    const FullSave save = desk->full_save();
    const std::vector<int> sent = desk->model().numbers();
    store_all([&](std::size_t i) { return sent[i]; });  // some were corrected
    for (const Batch& batch : save.traffic) EXPECT_EQ(test::ask(chip, frames(batch)), "");
    for (std::size_t i = 0; i < UserDataImage::kSize; ++i)
      EXPECT_EQ(chip.state().kept_data.entry(i), image.entry(i)) << i;
    EXPECT_EQ(chip.state().user_data, image);
    expect_reported(sent);
  }
  EXPECT_FALSE(page->take_reply("00"));
}

}  // namespace
}  // namespace qv5123
