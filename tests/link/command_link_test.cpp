#include "link/command_link.h"

#include <gtest/gtest.h>

#include "base/delay.h"
#include "link/indirect_access.h"
#include "support/fake_wire.h"

namespace qv5123 {
namespace {

using test::FakeWire;

class CommandLinkTest : public testing::Test {
 protected:
  FakeWire wire;
  std::vector<std::string> answers;
};

Task<> ask(CommandLink& link, std::uint8_t trigger, std::vector<std::string>& answers) {
  const auto reply = co_await link.query(trigger);
  answers.push_back(reply.value_or("none"));
}

TEST_F(CommandLinkTest, QueryTakesTheReplyAtItsNextLookAndFailsAtTheSixth) {
  Flow flow(ask(wire.link, 0x36, answers));
  wire.advance(50);
  EXPECT_EQ(wire.sender.wire(), "@3600*");
  wire.receive("text~12aB^more");
  wire.advance(299);
  EXPECT_TRUE(answers.empty());
  wire.advance(1);
  EXPECT_EQ(answers, std::vector<std::string>{"12aB"});
  EXPECT_EQ(wire.console, "textmore");

  flow.start(ask(wire.link, 0x36, answers));
  wire.advance(50 + 6 * 300 - 1);
  EXPECT_TRUE(flow.running());
  wire.advance(1);
  EXPECT_EQ(answers.back(), "none");
}

TEST_F(CommandLinkTest, QueriesTakeTurnsAndACancelledOneGivesUpItsPlace) {
  Flow first(ask(wire.link, 0x07, answers));
  Flow second(ask(wire.link, 0x36, answers));
  Flow third(ask(wire.link, 0x69, answers));
  wire.advance(60);
  EXPECT_EQ(wire.sender.wire(), "@0700*");
  second.cancel();
  first.cancel();
  wire.advance(60);
  EXPECT_EQ(wire.sender.wire(), "@0700*@6900*");
  wire.receive("~77^");
  wire.advance(300);
  EXPECT_EQ(answers, std::vector<std::string>{"77"});
}

Task<> request(CommandLink& link, Batch batch, std::vector<std::string>& answers) {
  const auto reply = co_await link.request(std::move(batch), std::chrono::milliseconds(400));
  answers.push_back(reply.value_or("none"));
}

Task<> read_wide(CommandLink& link, int& value) {
  value = co_await link.wide_read(0x922);
}

/// After one request was answered with so many digits after so long a time.
struct KnownLine {
  KnownLine(int took, std::size_t digits, unsigned baud = 19200) {
    LineSettings line;
    line.baud_rate = baud;
    wire.link.health() = LinkHealth(line);
    const Flow flow(request(wire.link, {{0x69, 0}}, answers));
    wire.advance(50 + took);
    wire.receive("~" + std::string(digits, '1') + "^");
    wire.advance(400);
  }
  /// What a register's answer comes to that takes so long; 0 never comes.
  int read(int took) {
    int value = -2;
    const Flow flow(read_wide(wire.link, value));
    wire.advance(50 + took);
    if (took > 0) wire.receive("~5a^");
    wire.advance(10);
    return value;
  }
  FakeWire wire;
  std::vector<std::string> answers;
};

TEST(CommandLink, ARegisterIsWaitedForAsLongAsTheLineTakesAndNoLonger) {
  EXPECT_EQ(KnownLine(5, 2).read(40), -2);
  EXPECT_EQ(KnownLine(5, 2).read(60), -1) << "too late";
  EXPECT_EQ(KnownLine(150, 2).read(150), 0x5A);
  EXPECT_EQ(KnownLine(150, 2).read(310), -1);
  EXPECT_EQ(KnownLine(45, 2, 2400).read(70), 0x5A) << "16 bytes take 67 ms";
  EXPECT_EQ(KnownLine(45, 2, 2400).read(100), -1);
  EXPECT_EQ(KnownLine(50, 486).read(60), -1) << "it was long, and not late";
}

TEST_F(CommandLinkTest, ARequestGoesOnAsSoonAsItsReplyIsComplete) {
  wire.receive("~99^");
  Flow flow(request(wire.link, isp_read_request(0x922), answers));
  wire.advance(60);
  wire.receive("~5");
  wire.advance(100);
  EXPECT_TRUE(answers.empty());
  wire.receive("a^text");
  wire.advance(0);
  EXPECT_EQ(answers, std::vector<std::string>{"5a"});
  EXPECT_EQ(wire.scheduler.timers(), 0u);

  wire.sender.chip = [&](const std::string&) { wire.receive("~12^"); };
  flow.start(request(wire.link, isp_read_request(0x922), answers));
  wire.advance(50);
  EXPECT_EQ(answers.back(), "12") << "an answer that was there before the request was reported sent";

  wire.sender.chip = [&](const std::string&) { wire.receive("~ab"); };
  flow.start(request(wire.link, isp_read_request(0x922), answers));
  wire.advance(800);
  wire.receive("cd^");
  wire.advance(0);
  EXPECT_EQ(answers.back(), "abcd") << "one that arrives slowly";

  wire.sender.chip = nullptr;
  flow.start(request(wire.link, isp_read_request(0x922), answers));
  wire.advance(450);
  EXPECT_EQ(answers.back(), "none");
  wire.sender.connected = false;
  flow.start(request(wire.link, isp_read_request(0x922), answers));
  wire.advance(50);
  EXPECT_EQ(answers.size(), 5u) << "nothing to wait for";
}

TEST_F(CommandLinkTest, WhoAsksNextGetsNoAnswerOfOneThatGaveUp) {
  Flow first(request(wire.link, {{0x07, 0}}, answers));
  Flow second(request(wire.link, {{0x36, 0}}, answers));
  wire.advance(60);
  first.cancel();
  wire.advance(20);
  wire.receive("~11^");  // while the second one's request is still held back by the pacing
  wire.advance(100);
  wire.receive("~22^");
  wire.advance(0);
  EXPECT_EQ(answers, std::vector<std::string>{"22"});

  wire.link.send(Traffic(20, Batch{{0xFA, 1}}));
  first.start(request(wire.link, {{0x07, 0}}, answers));
  wire.advance(60);
  first.start(request(wire.link, {{0x36, 0}}, answers));
  wire.advance(2000);
  EXPECT_EQ(wire.sender.writes.size(), 2u + 20 + 1) << "nobody waits for the other one";
  EXPECT_EQ(wire.sender.writes.back(), "@3600*");
}

TEST_F(CommandLinkTest, AnAnswerOfAnotherPageIsPassedOverAndItsOwnTaken) {
  const auto digits = [](std::size_t count) { return "~" + std::string(count, '7') + "^"; };
  Flow flow(ask(wire.link, 0x6B, answers));
  wire.advance(60);
  for (const std::size_t other : {352u, 40u, 486u, 432u}) {
    wire.receive(digits(other));
    wire.advance(300);
  }
  EXPECT_TRUE(answers.empty());
  wire.receive(digits(24));
  wire.advance(300);
  EXPECT_EQ(answers, std::vector{std::string(24, '7')});

  flow.start(ask(wire.link, 0x6B, answers));
  wire.advance(60);
  wire.receive(digits(30));
  wire.advance(300);
  EXPECT_EQ(answers.back().size(), 30u) << "of a chip that says more than is known";

  flow.start(request(wire.link, isp_read_request(0x922), answers));
  wire.advance(60);
  wire.receive(digits(24));
  wire.receive("~12^");
  wire.advance(0);
  EXPECT_EQ(answers.back(), "12");

  int value = 0;
  flow.start(read_wide(wire.link, value));
  wire.advance(55);
  wire.receive(digits(40));
  wire.advance(60);
  EXPECT_EQ(value, -1);
}

// AWB's reply is as long as ISP tune's: only the time tells that it is not the answer.
TEST_F(CommandLinkTest, AfterAQueryThatFailedTheNextLeavesWhenTheLineWasQuietForARoundTrip) {
  const std::string awb(40, 'a');
  Flow flow(ask(wire.link, 0x36, answers));
  wire.advance(50 + 1800);
  EXPECT_EQ(answers, std::vector<std::string>{"none"});
  Flow next(ask(wire.link, 0xBE, answers));
  wire.advance(700);
  wire.receive("~" + awb + "^");  // 2.5 seconds after its question
  wire.advance(2499);
  wire.receive("chat");
  EXPECT_EQ(wire.sender.wire(), "@3600*");
  wire.advance(60);
  EXPECT_EQ(wire.sender.wire(), "@3600*@be00*") << "what the chip says on the console counts for nothing";
  wire.receive("~" + std::string(40, 'b') + "^");
  wire.advance(300);
  EXPECT_EQ(answers.back(), std::string(40, 'b'));

  next.start(ask(wire.link, 0x36, answers));
  wire.advance(50);
  EXPECT_EQ(wire.sender.wire(), "@3600*@be00*@3600*") << "nothing waits once the chip has answered";
  next.start(ask(wire.link, 0x36, answers));
  wire.advance(50);
  EXPECT_EQ(wire.sender.writes.size(), 4u) << "the same question has the same answer";
  next.start(ask(wire.link, 0xBE, answers));
  wire.advance(2000);
  EXPECT_EQ(wire.sender.writes.size(), 4u) << "two answers to the one that was dropped are under way";
  for (int i = 0; i < 40; ++i) {
    wire.receive("~~");
    wire.advance(100);
  }
  EXPECT_EQ(wire.sender.writes.size(), 5u) << "a line that is never quiet holds nobody up for good";
}

TEST_F(CommandLinkTest, AnAnswerOlderThanAWriteIsNotTakenForThatOfTheSamePageAfterIt) {
  Flow flow(ask(wire.link, 0x6B, answers));
  wire.advance(50 + 1800);
  wire.link.send(Batch{{0x64, 1}});
  flow.start(ask(wire.link, 0x6B, answers));
  wire.advance(3000);
  EXPECT_EQ(wire.sender.wire(), "@6b00*@6401*");
  wire.receive("~" + std::string(24, '1') + "^");
  wire.advance(100 + 50);
  EXPECT_EQ(wire.sender.wire(), "@6b00*@6401*@6b00*") << "it was what was waited for";
  wire.receive("~" + std::string(24, '2') + "^");
  wire.advance(300);
  EXPECT_EQ(answers, (std::vector<std::string>{"none", std::string(24, '2')}));

  flow.start(ask(wire.link, 0x6B, answers));
  wire.advance(50 + 1800);
  flow.start(ask(wire.link, 0x6B, answers));
  wire.advance(50);
  EXPECT_EQ(wire.sender.writes.size(), 5u) << "what was sent before both questions delays none";
}

TEST_F(CommandLinkTest, AChipThatIsAwayOwesNoAnswer) {
  Flow flow(ask(wire.link, 0x36, answers));
  wire.advance(50 + 1800);
  wire.link.connection_changed();
  flow.start(ask(wire.link, 0xBE, answers));
  wire.advance(50);
  EXPECT_EQ(wire.sender.writes.size(), 2u);
}

Job bytes_job(std::initializer_list<const char*> chunks) {
  Job job;
  for (const char* text : chunks) {
    job.chunks.emplace_back().bytes = {text, text + std::char_traits<char>::length(text)};
  }
  return job;
}

Task<> transfer(CommandLink& link) {
  CommandLink::Hold hold = co_await link.hold();
  Job letter = bytes_job({"U"});
  co_await hold.send(std::move(letter));
  co_await Delay(link.scheduler(), std::chrono::milliseconds(1000));
  Job blocks = bytes_job({"HEAD", "BLOCK"});
  co_await hold.send(std::move(blocks));
}

TEST_F(CommandLinkTest, AHoldKeepsEverythingElseWaitingAndLosesNothing) {
  wire.link.send(Batch{{0x01, 0x00}});
  Flow flow(transfer(wire.link));
  wire.link.send(Batch{{0x01, 0x01}});
  wire.advance(500);
  EXPECT_EQ(wire.sender.wire(), "@0100*U");
  wire.link.send(Batch{{0x01, 0x02}});
  wire.advance(2000);
  EXPECT_EQ(wire.sender.wire(), "@0100*UHEADBLOCK@0101*@0102*");

  flow.start(transfer(wire.link));
  wire.link.send(Batch{{0x01, 0x03}});
  wire.advance(500);
  flow.cancel();
  wire.advance(500);
  EXPECT_EQ(wire.sender.wire(), "@0100*UHEADBLOCK@0101*@0102*U@0103*") << "a hold that is dropped lets go";
}

TEST_F(CommandLinkTest, EndsWithOpenBracketsClosedAndNothingAfterwards) {
  FlowSet flows;
  const auto end_with = [&](Traffic last) -> Task<> { co_await wire.link.end_with(std::move(last)); };
  Traffic save = flushed_singly({{reg::kSaveBracket, 1}, {reg::kKeepBracket, 1}, {0x20, 1}, {0x21, 1}});
  append(save, flushed_singly({{reg::kKeepBracket, 0}, {reg::kSaveBracket, 0}}));
  wire.link.send(save);
  wire.link.send(Batch{{0x30, 1}});
  wire.advance(149);
  flows.spawn(end_with({{{0x43, 0}}}));
  wire.link.send(Batch{{0x31, 1}});
  wire.advance(1000);
  EXPECT_EQ(wire.sender.wire(), "@f901*@fa01*@2001*@fa00*@f900*@4300*");
  EXPECT_FALSE(flows.running());
}

TEST_F(CommandLinkTest, ClosesBracketsThatALineWhichStandsStillMayHaveLeftOpen) {
  wire.sender.cuts_short = true;
  wire.link.send(flushed_singly({{reg::kKeepBracket, 1}, {reg::kKeepBracket, 0}}));
  wire.advance(100);
  wire.sender.cuts_short = false;
  wire.sender.writes.clear();
  const auto end = [&]() -> Task<> { co_await wire.link.end_with({}); };
  const Flow ending(end());
  wire.advance(100);
  EXPECT_EQ(wire.sender.wire(), "@fa00*");
}

}  // namespace
}  // namespace qv5123
