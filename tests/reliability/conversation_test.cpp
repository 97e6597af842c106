// Replies do not say what they answer: any page's may come while any other is asked.
#include "support/desk_bench.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

struct Reply {
  const char* page;
  std::size_t digits;
};
constexpr Reply kReplies[] = {{"front", 40},  {"awb", 40},     {"dynamic", 486},
                              {"gamma", 352}, {"matrix", 432}, {"lsc", 24}};

class Conversation : public test::DeskBench {
 protected:
  std::unique_ptr<TuningDesk> desk_of(const Reply& page) { return make_desk(page.page, host_, host_.doc); }
  /// What the page shows, as it would be saved.
  static UserDataImage shown(const TuningDesk& desk) {
    UserDataImage image;
    desk.model().store(image);
    return image;
  }
};

TEST_F(Conversation, APageShowsAReplyOfItsOwnOrWhatItShowedBefore) {
  for (const Reply& asked : kReplies) {
    for (const Reply& said : kReplies) {
      const bool own = &asked == &said;
      // Only the time tells those apart.
      if (!own && asked.digits == said.digits) continue;
      for (const int moment : {0, 60, 299, 301, 1700, 4000}) {
        SCOPED_TRACE(std::string(said.page) + " says what " + asked.page + " asked for after " +
                     std::to_string(moment) + " ms");
        const auto desk = desk_of(asked);
        const UserDataImage before = shown(*desk);
        host_.statuses.clear();
        desk->start_load();
        fake_.advance(moment);
        fake_.receive("~" + std::string(said.digits, '1') + "^");
        fake_.advance(20000);
        ASSERT_FALSE(desk->loading());
        const bool in_time = own && moment > 0 && moment < 1850;
        EXPECT_EQ(shown(*desk) != before, in_time);
        EXPECT_EQ(host_.last_status(), in_time ? desk->model().texts().loaded : desk->model().texts().failed);
      }
    }
  }
}

TEST_F(Conversation, ALateReplyIsNotTakenForThatOfAPageAskedNext) {
  for (const Reply& late : kReplies) {
    for (const Reply& asked : kReplies) {
      if (&late == &asked) continue;
      SCOPED_TRACE(std::string(late.page) + " answers when " + asked.page + " is asked");
      const auto first = desk_of(late);
      first->start_load();
      fake_.advance(2000);
      const auto desk = desk_of(asked);
      const UserDataImage before = shown(*desk);
      desk->start_load();
      fake_.advance(500);
      fake_.receive("~" + std::string(late.digits, '1') + "^");
      fake_.advance(20000);
      EXPECT_EQ(shown(*desk), before);
    }
  }
}

}  // namespace
}  // namespace qv5123
