#include "state/write_journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "console/main_commands.h"
#include "state/replay_script.h"
#include "state/write_export.h"
#include "state/write_history.h"
#include "support/inline_background.h"
#include "support/manual_scheduler.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

constexpr std::chrono::sys_time<milliseconds> kNoon{milliseconds(1'763'812'800'123)};

WriteEvent slope_event(std::optional<int> old, int now) {
  WriteEvent event;
  event.page = "awb";
  event.control = "A \"slope\", S";
  event.values = {{3, "a_slope", old, now}};
  event.batches = {{{0x92, 0x09}, {0x93, 0xCC}}, {{0x20, 1}}};
  event.result = {.chunks_sent = 2, .bytes_sent = 18};
  return event;
}

WriteRecord slope(int old, int now, int seconds = 0) {
  return record_of(slope_event(old, now), kNoon + std::chrono::seconds(seconds));
}

WriteRecord question(int seconds) {
  WriteEvent event;
  event.batches = {{{0x36, 0}}};
  event.result = {.chunks_sent = 1, .bytes_sent = 6};
  return record_of(event, kNoon + std::chrono::seconds(seconds));
}

std::string journal_of(const WriteRecords& records) {
  std::string text = journal_head(kNoon);
  for (const WriteRecord& record : records) text += journal_line(record) + "\n";
  return text;
}

TEST(WriteRecord, IsALineOfItsJournalAndBack) {
  EXPECT_EQ(journal_line(slope(12, 20)),
            "1763812800123\tawb\tA \"slope\", S\ta_slope=12>20\t9209 93cc|2001\tsent\t2\t0");
  WriteEvent image = slope_event({}, -5);
  image.control = "tab\tline\nback\\slash";
  image.batches = {{}, {{0x20, 1}}, {}};
  image.result = {.chunks_sent = 2, .bytes_sent = 6 + 700, .failed = true, .lost = true};
  const WriteRecord record = record_of(image, kNoon);
  EXPECT_EQ(journal_line(record),
            "1763812800123\tawb\ttab\\tline\\nback\\\\slash\ta_slope=?>-5\t-|2001|-\tlost\t2\t700");
  EXPECT_EQ(read_journal_line(journal_line(record)), record);
  EXPECT_EQ(registers_text(record), "(700 bytes) | 2001");
  EXPECT_EQ(values_text(record), "a_slope ? -> -5");
  EXPECT_EQ(result_text(record), "port lost, 2 of 3");

  const std::string line = journal_line(slope(12, 20));
  for (const std::string& damaged : std::vector<std::string>{line.substr(0, line.rfind('\t')), "x" + line,
                                                             line + "1x", line + "\t", "\t\t\t\t\t\t\t"})
    EXPECT_FALSE(read_journal_line(damaged)) << damaged;
  for (const auto& [part, other] : std::map<std::string, std::string>{
           {"9209", "92 9"}, {"93cc", "93CC"}, {"12>20", "12"}, {"\tsent", "\tgone"}, {"12>20", "1x>20"}}) {
    std::string damaged = line;
    damaged.replace(damaged.find(part), part.size(), other);
    EXPECT_FALSE(read_journal_line(damaged)) << damaged;
  }
}

TEST(WriteJournal, OpensAsFarAsItGoesAndSaysSo) {
  const std::string whole = journal_of({slope(1, 2), slope(2, 3), slope(3, 4)});
  const OpenedJournal read = open_journal(whole);
  EXPECT_EQ(read.journal.size(), 3u);
  EXPECT_THAT(read.remarks, IsEmpty());
  EXPECT_EQ(read.journal.at(2), slope(3, 4));

  const OpenedJournal cut = open_journal(whole.substr(0, whole.size() - 1));
  EXPECT_EQ(cut.journal.size(), 2u);
  EXPECT_THAT(cut.remarks, ElementsAre("Its last write is cut and left out."));
  const OpenedJournal damaged = open_journal(whole + "rubbish\n" + journal_of({slope(4, 5)}));
  EXPECT_EQ(damaged.journal.size(), 4u) << "a run that began its file anew goes on";
  EXPECT_THAT(damaged.remarks, ElementsAre("Left out, for they cannot be read: 1 line."));
  for (const std::string& foreign :
       {std::string(), std::string("12\n13\n"), std::string("QV5123 journal 2\n")})
    EXPECT_THAT(open_journal(foreign).remarks, ElementsAre("This is no journal of writes.")) << foreign;

  const test::TemporaryFolder folder;
  const auto file = folder.write("long.journal", whole);
  const OpenedJournal huge = open_journal_file(file, whole.size() - 5);
  EXPECT_EQ(huge.journal.size(), 2u);
  EXPECT_THAT(huge.remarks, ElementsAre(HasSubstr("It is longer than")));
  EXPECT_THAT(open_journal_file(folder.path()).remarks, ElementsAre(HasSubstr("cannot be read.")));
}

TEST(WriteJournal, IsFilteredByWordsAndShowsQuestionsOnRequestOnly) {
  const auto matches = [](const std::string& words, const WriteRecord& record, bool questions = false) {
    return WriteMatcher({words, questions}).matches(journal_line(record));
  };
  EXPECT_TRUE(matches("", slope(12, 20)));
  EXPECT_TRUE(matches("  SLOPE awb  12 ", slope(12, 20)));
  EXPECT_TRUE(matches("93CC", slope(12, 20)));
  EXPECT_FALSE(matches("slope gamma", slope(12, 20)));
  EXPECT_FALSE(matches("1763812800", slope(12, 20))) << "the time is shown in other words";
  EXPECT_FALSE(matches("", question(0)));
  EXPECT_TRUE(matches("", question(0), true));
}

TEST(WriteJournal, TellsWhatTheChipWasLastTold) {
  WriteJournal journal;
  journal.add(slope(1, 2));
  WriteRecord lost = slope(2, 3);
  lost.result = WriteRecord::Result::lost;
  journal.add(lost);
  WriteRecord other = slope(7, 8);
  other.values[0].name = "b_slope";
  journal.add(other);
  EXPECT_THAT(values_after(journal, 1), ElementsAre(Pair("awb.a_slope", 2)))
      << "the other's old value is of the time after the loss";
  EXPECT_THAT(values_after(journal, 2), ElementsAre(Pair("awb.b_slope", 7))) << "nobody knows what left";
  EXPECT_THAT(values_after(journal, 3), ElementsAre(Pair("awb.b_slope", 8)));

  WriteHistory history([] { return kNoon; });
  history.note_connection();
  EXPECT_EQ(history.journal().size(), 0u) << "nothing was known before";
  history.note(slope_event(1, 2));
  history.note_connection();
  history.note_connection();
  ASSERT_EQ(history.journal().size(), 2u) << "closed and opened is one thing";
  WriteEvent b = slope_event(7, 8);
  b.values[0].name = "b_slope";
  history.note(b);
  EXPECT_THAT(values_after(history.journal(), 1), ElementsAre(Pair("awb.a_slope", 2)))
      << "what was read of the other chip says nothing of this one";
  EXPECT_THAT(values_after(history.journal(), 3), ElementsAre(Pair("awb.b_slope", 8)));
  const OpenedJournal read = open_journal(journal_of({history.journal().at(0), history.journal().at(1)}));
  EXPECT_TRUE(is_connection(read.journal.at(1)));
}

TEST(WriteJournal, WhatHasNoNamesTakesAwayWhatWasKnown) {
  const auto named = [](const char* page, const char* name, std::optional<int> old, int now) {
    WriteRecord record = slope(0, now);
    record.page = page;
    record.values = {{name, old, now}};
    return record;
  };
  const auto unnamed = [](Traffic flushes) {
    WriteRecord record = slope(0, 0);
    record.values.clear();
    record.flushes = std::move(flushes);
    return record;
  };
  const WriteRecord reset = unnamed({factory_reset()});
  WriteRecord image = unnamed({{}});
  image.plain_bytes = 4096;
  WriteRecord cut = unnamed({});
  cut.result = WriteRecord::Result::cut_short;
  for (const WriteRecord& all : {reset, image, cut}) {
    const OpenedJournal opened = open_journal(journal_of({slope(1, 2), all, named("awb", "b_slope", 7, 8)}));
    EXPECT_THAT(values_after(opened.journal, 1), ElementsAre(Pair("awb.a_slope", 2)))
        << "the other's old value was read afterwards";
    EXPECT_THAT(values_after(opened.journal, 2), ElementsAre(Pair("awb.b_slope", 7)));
  }

  const WriteRecord raw = unnamed({{{0x64, 1}, {0x64, 2}}});
  const OpenedJournal row = open_journal(journal_of({slope(1, 2), named("lsc", "parameter1.r", 3, 4), raw,
                                                     question(0), named("lsc", "parameter1.g", 5, 6)}));
  EXPECT_THAT(values_after(row.journal, 1), ElementsAre(Pair("awb.a_slope", 2), Pair("lsc.parameter1.r", 3)));
  EXPECT_THAT(values_after(row.journal, 3), ElementsAre(Pair("awb.a_slope", 2), Pair("lsc.parameter1.g", 5)));

  const OpenedJournal twice =
      open_journal(journal_of({named("awb", "a_slope", {}, 30), named("awb", "a_slope", 30, 40)}));
  EXPECT_THAT(values_after(twice.journal, 0), IsEmpty()) << "30 is what came first";
}

TEST(WriteJournal, DropsItsOlderHalfAndACopyStaysAsItWas) {
  const std::size_t line = journal_line(slope(1000, 1000)).size() + 1;
  WriteJournal journal(3000 * line);
  for (int i = 1000; i < 2500; ++i) journal.add(slope(i, i));
  const WriteJournal copy = journal;
  for (int i = 2500; i < 4500; ++i) journal.add(slope(i, i));
  ASSERT_EQ(copy.size(), 1500u);
  ASSERT_EQ(journal.dropped(), 1500u);
  ASSERT_EQ(journal.size(), 2000u);
  for (std::size_t i = 0; i < 1500; i += 11) EXPECT_EQ(copy.at(i), slope(1000 + i, 1000 + i));
  for (std::size_t i = 0; i < 2000; i += 11) EXPECT_EQ(journal.at(i), slope(2500 + i, 2500 + i));
}

TEST(WriteExport, WritesTextTablesAndObjects) {
  const WriteRecords records{slope(12, 20)};
  EXPECT_EQ(writes_as_text(records),
            "2025-11-22T12:00:00.123Z  awb  A \"slope\", S  a_slope 12 -> 20  9209 93cc | 2001  sent\n");
  EXPECT_EQ(writes_as_csv(records),
            "time,page,control,values,registers,result\n"
            "2025-11-22T12:00:00.123Z,awb,\"A \"\"slope\"\", S\",a_slope 12 -> 20,9209 93cc | 2001,sent\n");
  EXPECT_EQ(writes_as_json_lines(records),
            R"({"time":"2025-11-22T12:00:00.123Z","page":"awb","control":"A \"slope\", S",)"
            R"("values":[{"name":"a_slope","old":12,"new":20}],"flushes":[[[146,9],[147,204]],[[32,1]]],)"
            R"("flushes_left":2,"plain_bytes":0,"result":"sent"})"
            "\n");
}

TEST(WriteExport, ScriptsAreWhatReplayReads) {
  WriteRecord cut = slope(20, 30, 2);
  cut.flushes_left = 1;
  cut.control = "two\nlines";
  const std::string script = writes_as_script({slope(12, 20), question(1), cut, slope(30, 40, 3600)});
  EXPECT_EQ(script,
            "# QV5123 register script, for \"qv5123ctl replay\"\n"
            "# 2025-11-22T12:00:00.123Z  awb  A \"slope\", S  a_slope 12 -> 20\n9209 93cc\n2001\n"
            "wait 1950\n"
            "# 2025-11-22T12:00:02.123Z  awb  two lines  a_slope 20 -> 30\n9209 93cc\n"
            "wait 10000\n"
            "# 2025-11-22T13:00:00.123Z  awb  A \"slope\", S  a_slope 30 -> 40\n9209 93cc\n2001\n");
  const ReplayScript read = read_replay_script(script);
  EXPECT_EQ(read.fault, "");
  ASSERT_EQ(read.steps.size(), 5u);
  EXPECT_EQ(read.steps[2], (ReplayStep{milliseconds(1950), {{0x92, 9}, {0x93, 0xCC}}, 7}));

  EXPECT_EQ(
      read_replay_script("\r\n 2001\t93CC # both\r\nwait 5\nwait 6").steps,
      (std::vector<ReplayStep>{{milliseconds(0), {{0x20, 1}, {0x93, 0xCC}}, 2}, {milliseconds(11), {}, 0}}));
  for (const std::string line :
       {"200", "2001 2", "20x1", "wait", "wait x", "wait -1", "wait 3600001", "wait 1 2"})
    EXPECT_THAT(read_replay_script("2001\n" + line).fault, HasSubstr("line 2: ")) << line;
}

struct Disk {
  test::TemporaryFolder folder;
  test::ManualScheduler scheduler;
  test::InlineBackground background;
  std::chrono::system_clock::time_point now = kNoon;
  std::vector<std::string> failures;
  WriteJournalFiles files{scheduler,
                          background,
                          {folder.path() / "runs", [this] { return now; },
                           [this](const std::string& text) { failures.push_back(text); }}};
  WriteHistory history{[this] { return now; }};

  Disk() { history.keep_in(files); }
  std::vector<WriteJournalFiles::Run> runs() { return journal_runs(folder.path() / "runs"); }
};

TEST(WriteHistory, IsKeptOnDiskForEachRun) {
  Disk disk;
  disk.history.note(slope_event(1, 2));
  WriteEvent nothing = slope_event(2, 3);
  nothing.result = {.failed = true, .lost = true};
  disk.history.note(nothing);
  EXPECT_EQ(disk.history.journal().size(), 1u) << "nothing of it left";
  EXPECT_THAT(disk.runs(), IsEmpty()) << "gathered for a second";
  disk.scheduler.advance(WriteJournalFiles::kGather);
  disk.history.note(slope_event(2, 4));
  disk.files.flush();
  ASSERT_EQ(disk.runs().size(), 1u);
  EXPECT_EQ(disk.runs()[0].start, "2025-11-22 12:00:00");
  const OpenedJournal opened = open_journal_file(disk.runs()[0].file);
  EXPECT_THAT(opened.remarks, IsEmpty());
  EXPECT_EQ(opened.journal.size(), 2u);
  EXPECT_EQ(opened.journal.at(1), slope(2, 4));
}

TEST(WriteHistory, TheOldestRunsGoAndForeignFilesStay) {
  Disk disk;
  std::filesystem::create_directories(disk.folder.path() / "runs");
  for (int day = 10; day < 35; ++day)
    disk.folder.write("runs/writes-202510" + std::to_string(day) + "-000000-1.journal",
                      journal_of({slope(1, 2)}));
  disk.folder.write("runs/unsaved-1.journal", "not ours");
  disk.folder.write("runs/writes-diary.journal", "not ours");
  disk.history.note(slope_event(1, 2));
  disk.files.flush();
  EXPECT_EQ(disk.runs().size(), WriteJournalFiles::kMostRuns);
  EXPECT_EQ(disk.runs().front().start, "2025-11-22 12:00:00");
  EXPECT_EQ(disk.runs().back().start, "2025-10-16 00:00:00");
  EXPECT_TRUE(std::filesystem::exists(disk.folder.path() / "runs/unsaved-1.journal"));
  EXPECT_TRUE(std::filesystem::exists(disk.folder.path() / "runs/writes-diary.journal"));

  remove_old_journals(disk.folder.path() / "runs", 20, 2 * disk.runs().front().bytes);
  EXPECT_EQ(disk.runs().size(), 2u) << "as many as the bytes are enough for";
}

TEST(WriteHistory, ALongRunGoesOnInFilesThatAreOneRun) {
  Disk disk;
  std::filesystem::create_directories(disk.folder.path() / "runs");
  disk.folder.write("runs/writes-20251121-170000-1.journal", journal_of({slope(1, 2)}));
  WriteEvent large = slope_event(1, 2);
  large.batches[1].assign(WriteJournalFiles::kMostOfOne / 5 + 1, {0x20, 1});
  for (int i = 0; i < 3; ++i) {
    disk.now += std::chrono::seconds(1);
    disk.history.note(large);
    disk.files.flush();
  }
  ASSERT_EQ(disk.runs().size(), 2u);
  EXPECT_EQ(disk.runs()[0].start, "2025-11-22 12:00:01");
  EXPECT_GT(disk.runs()[0].bytes, 3 * WriteJournalFiles::kMostOfOne);
  EXPECT_EQ(open_journal_file(disk.runs()[0].file).journal.size(), 3u);

  std::vector<WriteJournalFiles::Run> others;
  const auto list = [&]() -> Task<> { others = co_await disk.files.others(); };
  const Flow listing(list());
  ASSERT_EQ(others.size(), 1u) << "none of this run's own";
  EXPECT_EQ(others[0].start, "2025-11-21 17:00:00");
  remove_old_journals(disk.folder.path() / "runs", 1, WriteJournalFiles::kMostBytes);
  ASSERT_EQ(disk.runs().size(), 1u);
  EXPECT_GT(disk.runs()[0].bytes, 3 * WriteJournalFiles::kMostOfOne) << "its files count as one";
}

TEST(WriteHistory, ADiskThatTakesNothingIsToldOfOnce) {
  Disk disk;
  disk.folder.write("runs", "a file where the folder should be");
  for (int i = 0; i < 3; ++i) {
    disk.history.note(slope_event(i, i));
    disk.files.flush();
  }
  EXPECT_THAT(disk.failures, ElementsAre(HasSubstr("The history is not kept: ")));
  EXPECT_EQ(disk.history.journal().size(), 3u);
}

}  // namespace
}  // namespace qv5123
