#include "state/comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "state/all_pages_read.h"
#include "support/desk_bench.h"
#include "support/desk_fields.h"
#include "tuning/front_desk.h"
#include "tuning/lens_desk.h"

namespace qv5123 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Show = CompareFilter::Show;
using Strings = std::vector<std::string>;

/// A file with 30 for Parameter-1 RED of the lens shading page, 31 for GREEN.
UserDataImage lens_file() {
  UserDataImage file;
  file.set_word(440, 30);
  file.set_word(442, 31);
  file.mark_loaded();
  return file;
}

class ComparisonTest : public test::DeskBench {
 protected:
  ComparisonTest() {
    lens_.watch(states_);
    load_desk(lens_, "001400150000000000000000");  // 20 and 21
    wire();
    host_.statuses.clear();
  }
  /// The full names of what a filter lets through.
  Strings find(const CompareFilter& filter) {
    comparison_.look_again();
    Strings names;
    for (const std::size_t value : comparison_.find(filter))
      names.push_back(comparison_.page_name(value) + "." + comparison_.field(value).name);
    return names;
  }
  Strings between(Place one, Place two) {
    return find({.words = "", .show = Show::between, .one = one, .two = two});
  }
  /// The first values of the lens shading page.
  std::vector<std::size_t> lens_values(std::size_t count) {
    comparison_.look_again();
    std::vector<std::size_t> values = comparison_.find({.words = "lsc.parameter1", .show = Show::all});
    values.resize(count);
    return values;
  }

  ValueStates states_{fake_.link};
  LensDesk lens_{host_, image()};
  Comparison comparison_{states_};
};

TEST_F(ComparisonTest, FindsWhatDiffersBetweenPlaces) {
  EXPECT_THAT(find({}), IsEmpty()) << "the page was read from the chip";
  EXPECT_GT(comparison_.size(), 500u);
  lens_.type(0, 25);
  EXPECT_THAT(find({}), ElementsAre("lsc.parameter1.r"));
  states_.file_is(lens_file());
  EXPECT_THAT(between(Place::page, Place::chip), ElementsAre("lsc.parameter1.r"));
  EXPECT_THAT(between(Place::chip, Place::file), ElementsAre("lsc.parameter1.r", "lsc.parameter1.g"));
  EXPECT_THAT(between(Place::file, Place::other), IsEmpty()) << "there is none";

  EXPECT_THAT(find({.words = " green  PARAMETER-1", .show = Show::all}), ElementsAre("lsc.parameter1.g"));
  EXPECT_THAT(find({.words = "LSC blue", .show = Show::differences}), IsEmpty());
  const std::size_t red = lens_values(1)[0];
  EXPECT_TRUE(comparison_.stands_out(red, Place::chip));
  EXPECT_FALSE(comparison_.stands_out(red, Place::page)) << "the others are held against it";
}

TEST_F(ComparisonTest, NumbersThatBecomeTheSameDoNotDiffer) {
  FrontDesk front(host_, image());
  front.watch(states_);
  const std::size_t level = test::field_place(front, "ir_on_off");
  front.type(level, 300);
  EXPECT_EQ(front.model().numbers()[level], 300) << "taken as it stands";
  const KnownValues then{{"front.ir_on_off", 300 % 256}};
  comparison_.set_other(values_in_journal(states_, then, "then"));
  EXPECT_THAT(between(Place::page, Place::other), IsEmpty()) << "the chip holds its low byte";
}

TEST_F(ComparisonTest, HasOneMorePlace) {
  UserDataImage second = lens_file();
  second.set_word(442, 99);
  states_.file_is(lens_file());
  comparison_.set_other(values_in_file(states_, second, "old.dat"));
  EXPECT_THAT(between(Place::file, Place::other), ElementsAre("lsc.parameter1.g")) << "with no chip at all";

  const KnownValues then{{"lsc.parameter1.r", 20}, {"lsc.parameter1.g", 7}, {"gone.value", 1}};
  comparison_.set_other(values_in_journal(states_, then, "Chip at noon"));
  EXPECT_THAT(between(Place::chip, Place::other), ElementsAre("lsc.parameter1.g"));
  EXPECT_EQ(comparison_.text(lens_values(3)[2], Place::other), "") << "the journal knows nothing of it";
}

TEST_F(ComparisonTest, SaysWhatPagesTakeAndWhatIsSent) {
  states_.file_is(lens_file());
  lens_.type(0, 30);
  const std::vector<std::size_t> chosen = lens_values(3);
  const std::vector<PageValues> taken = values_to_take(comparison_, chosen, Place::file);
  ASSERT_EQ(taken.size(), 1u);
  EXPECT_EQ(states_.page_name(taken[0].page), "lsc");
  EXPECT_THAT(taken[0].fields(), ElementsAre(1)) << "the first is the same, of the third the file has 0";
  EXPECT_EQ(taken[0].values[0].number, 31);
  EXPECT_THAT(values_to_take(comparison_, chosen, Place::other), IsEmpty());

  // The patches of the AWB page are sent by nothing, and the gamma page holds nothing.
  std::vector<std::size_t> more = comparison_.find({.words = "awb.patch1.r", .show = Show::all});
  const std::vector<std::size_t> gamma = comparison_.find({.words = "gamma.", .show = Show::all});
  const auto sendable = std::find_if(gamma.begin(), gamma.end(), [this](std::size_t value) {
    return comparison_.field(value).sent_by != Field::kNowhere;
  });
  ASSERT_NE(sendable, gamma.end());
  more.push_back(*sendable);
  more.insert(more.end(), chosen.begin(), chosen.end());
  const ValuesToSend sending = values_to_send(comparison_, more);
  EXPECT_EQ(sending_question(sending, {6, 1}),
            "Send 3 values to the chip?\n\n"
            "lsc.parameter1.r: chip 20, page 30\n"
            "lsc.parameter1.g: chip 21, page 21\n"
            "lsc.parameter1.b: chip 0, page 0\n"
            "\nNothing sends 1 of those chosen alone; left out.\n"
            "\nThe pages of 1 of those chosen hold nothing; left out.\n"
            "\nEach goes as its page's own control sends it: 6 register writes, in some 0.1 s.");
  ASSERT_EQ(sending.pages.size(), 1u);
  EXPECT_THAT(sending.pages[0].fields(), ElementsAre(0, 1, 2));

  ValuesToSend many;
  many.texts.assign(17, "a: chip 1, page 2");
  EXPECT_THAT(sending_question(many, {320, 1}), HasSubstr("and 2 more\n"));
  EXPECT_THAT(sending_question(many, {320, 1}), HasSubstr("320 register writes, in some 1.1 s"))
      << "a second for the line, 50 ms before it";
  LineSettings slow;
  slow.baud_rate = 2400;
  EXPECT_THAT(sending_question(many, {320, 4, LinkHealth(slow).frame_time()}), HasSubstr("in some 8.2 s"));
}

TEST_F(ComparisonTest, IsCopiedAndExported) {
  states_.file_is(lens_file());
  const std::vector<std::size_t> values = lens_values(1);
  EXPECT_EQ(comparison_as_text(comparison_, values),
            "Page\tName\tControl\tIn page\tOn chip\tIn file\n"
            "lsc\tparameter1.r\tParameter-1 RED\t20\t20\t30\n");
  comparison_.set_other(values_in_file(states_, UserDataImage(), "a, \"b\".dat"));
  EXPECT_EQ(comparison_as_csv(comparison_, values),
            "page,name,control,in_page,on_chip,chip_known,in_file,\"a, \"\"b\"\".dat\"\n"
            "lsc,parameter1.r,Parameter-1 RED,20,20,read,30,0\n");
  lens_.send_row(LensControl::parameter1);
  wire();
  comparison_.look_again();
  EXPECT_THAT(comparison_as_csv(comparison_, values), HasSubstr(",20,20,\"sent, not read back\",30,0\n"));
}

TEST_F(ComparisonTest, ReadsAllPagesAndTellsWhichDidNotAnswer) {
  answer("@6b00*", "002800150000000000000000");  // of the lens shading page: 40, 21
  Strings begun;
  std::optional<Strings> failed;
  const auto run = [&]() -> Task<> {
    failed = co_await read_all_pages(host_, states_,
                                     [&](std::size_t page) { begun.push_back(states_.page_name(page)); });
  };
  lens_.type(0, 25);
  Flow flow(run());
  fake_.advance(30'000);
  ASSERT_TRUE(failed);
  EXPECT_THAT(begun, ElementsAre("front", "awb", "dynamic", "gamma", "matrix", "lsc"));
  EXPECT_THAT(*failed, ElementsAre("front", "awb", "dynamic", "gamma", "matrix"));
  EXPECT_EQ(pages_read_text(6, *failed), "Not read from the chip: front, awb, dynamic, gamma, matrix");
  EXPECT_EQ(pages_read_text(6, {}), "6 pages read from the chip");
  EXPECT_EQ(states_.state(states_.page_named("lsc"), 0).chip.number, 40);
  EXPECT_EQ(lens_.values().parameter1[0], 25) << "what was typed stays";
  EXPECT_THAT(host_.statuses, testing::Not(testing::Contains("Load Isp ok")));

  Flow cancelled(run());
  fake_.advance(100);
  cancelled.cancel();
  wire();
  EXPECT_EQ(wire(30'000), "") << "the other pages are not asked for any more";
}

}  // namespace
}  // namespace qv5123
