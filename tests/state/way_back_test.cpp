#include "state/way_back.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/desk_bench.h"
#include "tuning/lens_desk.h"

namespace qv5123 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class WayBackTest : public test::DeskBench {
 protected:
  ValueStates states_{fake_.link};
  LensDesk desk_{host_, image()};

  void SetUp() override { desk_.watch(states_); }
  /// The user types parameter1 of all three colours, and sends the row.
  void send_row(int number) {
    for (std::size_t field = 0; field < 3; ++field) desk_.type(field, number);
    desk_.send_row(LensControl::parameter1);
    wire();
  }
};

TEST_F(WayBackTest, IsWhatDiffersFromTheMomentAndWhatIsNotKnown) {
  send_row(20);
  const KnownValues then{{"lsc.parameter1.r", 20},
                         {"lsc.parameter1.g", 21},
                         {"lsc.parameter2.b", 5},
                         {"awb.patch1.r", 7},
                         {"gone.value", 1}};
  const WayBack way = way_back(then, states_);
  EXPECT_THAT(way.differences,
              ElementsAre("awb.patch1.r: chip ?, then 7", "lsc.parameter1.g: chip 20, then 21",
                          "lsc.parameter2.b: chip ?, then 5"));
  EXPECT_EQ(way.unsendable, 1u) << "a patch is the page's own";
  ASSERT_EQ(way.pages.size(), 1u);
  EXPECT_EQ(states_.page_name(way.pages[0].page), "lsc");
  EXPECT_THAT(way.pages[0].fields(), ElementsAre(1, 5));

  const std::string question = way_back_question(way, {12, 2}, 1);
  EXPECT_THAT(question, HasSubstr("3 values differ from that moment:\n\nawb.patch1.r: chip ?, then 7\n"));
  EXPECT_THAT(question, HasSubstr("Nothing sends 1 of them alone; left out."));
  EXPECT_THAT(question, HasSubstr("1 write since then without names of values is not taken back."));
  EXPECT_THAT(question, HasSubstr("Send 12 register writes, in some 0.1 s?"));
}

TEST_F(WayBackTest, TellsWhatGoesAlong) {
  send_row(20);
  desk_.type(1, 77);
  desk_.type(2, 78);
  const KnownValues then{{"lsc.parameter1.r", 10}, {"lsc.parameter1.g", 20}};
  WayBack way = way_back(then, states_);
  ASSERT_EQ(way.pages.size(), 1u);
  const auto row = desk_.control_values(static_cast<int>(LensControl::parameter1));
  add_neighbours(way, way.pages[0], row, then, states_);
  ASSERT_EQ(way.pages[0].neighbours.size(), 1u);
  EXPECT_EQ(way.pages[0].neighbours[0].field, 1u);
  EXPECT_EQ(way.pages[0].neighbours[0].then, 20);
  EXPECT_THAT(way_back_question(way, {6, 1}, 0),
              HasSubstr("what they were then is not known:\nlsc.parameter1.b: chip 20, page 78\n"));
}

TEST_F(WayBackTest, LeadsFromTheJournalBackToWhatTheChipHeld) {
  WriteJournal journal;
  states_.on_write([&](const WriteEvent& event) { journal.add(record_of(event, {})); });
  send_row(20);
  send_row(30);
  fake_.link.send(Batch{{0x92, 1}});
  wire();
  journal.add(connection_record({}));
  EXPECT_EQ(unnamed_writes_after(journal, 1), 1u);
  const WayBack way = way_back(values_after(journal, 1), states_);
  ASSERT_EQ(way.pages.size(), 1u);
  EXPECT_EQ(way.pages[0].values[2].then, 20);
}

}  // namespace
}  // namespace qv5123
