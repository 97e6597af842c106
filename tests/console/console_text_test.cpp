#include "console/console_text.h"

#include <gtest/gtest.h>

namespace qv5123 {
namespace {

// A control that follows the changes, as the window's does.
struct Follower {
  ConsoleText model;
  std::string shown;

  void follow(const ConsoleChange& change) {
    if (change.cleared) shown.clear();
    shown.erase(0, change.dropped);  // the texts of these tests are ASCII, a byte a position
    shown += change.appended;
  }
  void receive(const std::string& text) { follow(model.append_received(text)); }
};

TEST(ConsoleText, ShowsEightBitCharactersWithoutCarriageReturns) {
  ConsoleText text;
  text.append_received("Temp 25\xB0\r");
  text.append_received("\nok\r\n");
  text.append("/dev/tty\u00e4 open ! \r\n");
  EXPECT_EQ(text.text(), "Temp 25\u00b0\nok\n/dev/tty\u00e4 open ! \n");
  EXPECT_EQ(text.lines(), 4u);
  EXPECT_EQ(text.characters(), 9 + 3 + 18u);
}

TEST(ConsoleText, MoreThan10240LinesGoWithTheNextText) {
  Follower console;
  for (int i = 0; i < 10239; ++i) console.receive("x\r\n");
  EXPECT_EQ(console.model.lines(), 10240u);
  console.receive("y\r\n");
  EXPECT_EQ(console.model.lines(), 10241u) << "the limit looks at what was there before";
  console.follow(console.model.append("own text"));
  EXPECT_EQ(console.model.lines(), 10241u);
  console.receive("gone too");
  EXPECT_EQ(console.shown, "");
  console.receive("afresh");
  EXPECT_EQ(console.shown, "afresh");
  EXPECT_EQ(console.model.text(), "afresh");
}

TEST(ConsoleText, DropsTheOldestBeyondTheCharacterLimit) {
  Follower console;
  std::string all;
  for (int i = 0; all.size() < 10'000'000; ++i) {
    const std::string batch = std::to_string(i) + std::string(1999, 'z') + (i % 8 == 0 ? "\n" : "");
    console.receive(batch);
    all += batch;
    ASSERT_LE(console.model.characters(), ConsoleText::kCharacterLimit);
  }
  EXPECT_GE(console.model.characters(), ConsoleText::kCharacterLimit / 4 * 3);
  EXPECT_EQ(console.shown, all.substr(all.size() - console.shown.size()));
  EXPECT_EQ(console.model.text(), console.shown);

  std::string at_once(3'000'000, 'a');
  at_once += "end";
  console.follow(console.model.append(at_once));
  EXPECT_EQ(console.shown.size(), ConsoleText::kCharacterLimit / 4 * 3);
  EXPECT_EQ(console.model.text(), console.shown);
  EXPECT_EQ(console.shown.substr(console.shown.size() - 4), "aend");
}

TEST(ConsoleText, NeverCutsACharacterInTwo) {
  constexpr std::size_t kLimit = ConsoleText::kCharacterLimit;
  ConsoleText text;
  for (int half = 0; half < 2; ++half) text.append(std::string(kLimit / 2 - 1, 'a'));
  text.append("\U0001F600");  // two positions
  const ConsoleChange change = text.append_received(std::string(kLimit / 4 * 3 - 1, '\xE4'));
  EXPECT_EQ(change.dropped, kLimit) << "one would be enough, but it is half a character";
  EXPECT_EQ(text.characters(), kLimit / 4 * 3 - 1);
  EXPECT_EQ(text.text().substr(0, 2), "\u00e4");
}

}  // namespace
}  // namespace qv5123
