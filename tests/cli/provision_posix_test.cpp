#include <gmock/gmock.h>
#include <signal.h>

#include <set>
#include <sstream>

#include "cli/ctl_test.h"

namespace qv5123 {
namespace {

using test::CtlTest;
using testing::HasSubstr;

constexpr char kRecipe[] =
    "[[step]]\ndo = \"registers\"\nset = { 0xF923 = 5 }\n"
    "[[step]]\ndo = \"check\"\nregisters = { 0xF923 = 5 }\n";

TEST_F(CtlTest, ProvisionsBoardsBesideEachOther) {
  folder.write("lot.toml", kRecipe);
  plug_in({});
  test::Program other("qv5123sim", {"--link", "other"}, folder.path());
  ASSERT_NE(other.line(), "");
  const auto both = ctl({"provision", "lot.toml", "--port", "board", "--port", "other", "--port", "gone"});
  EXPECT_EQ(both.code, 1) << both.err;
  EXPECT_THAT(both.out, HasSubstr("pass  board  QV5120042  "));
  EXPECT_THAT(both.out, HasSubstr("pass  other  QV5120042  "));
  EXPECT_THAT(both.out, testing::ContainsRegex("fail  gone  -  [0-9.]+ s  There is no port gone\\."));
  EXPECT_THAT(both.err, HasSubstr("board: 2/2 check\n"));
  const auto summary = ctl({"records", "summary", "lot.records.jsonl", "--json"}).json();
  EXPECT_EQ(summary["records"], 3);
  EXPECT_EQ(summary["passed"], 1) << "both have the simulator's serial number";

  std::filesystem::create_symlink("board", folder.path() / "same");
  const auto twice = ctl({"provision", "lot.toml", "--port", "board", "--port", "same"});
  EXPECT_EQ(twice.code, 2);
  EXPECT_EQ(twice.err, "qv5123ctl: --port: board and same are one device\n");
}

TEST_F(CtlTest, WatchesUntilAskedToEnd) {
  folder.write("lot.toml", kRecipe);
  plug_in({});
  const auto line = start({"provision", "lot.toml", "--watch", "--port", "board", "--port", "gone"});
  EXPECT_THAT(line->expect("QV5120042"), HasSubstr("pass  board  "));
  line->signal(SIGINT);
  EXPECT_EQ(line->end(), 0);
  EXPECT_EQ(ctl({"records", "summary", "lot.records.jsonl", "--json"}).json()["records"], 1);
}

TEST_F(CtlTest, RecordsOutliveEveryKill) {
  folder.write("lot.toml", kRecipe);
  std::vector<std::string> command{"provision", "lot.toml", "--dry-run", "--records", "r.jsonl"};
  for (int i = 0; i < 8; ++i) command.insert(command.end(), {"--port", "p" + std::to_string(i)});
  std::size_t told = 0;
  for (int kill = 0; kill < 100; ++kill) {
    const auto line = start(command);
    // Each time at another moment, most of them while records are written.
    for (int seen = 0; seen < kill % 9 && seen < 8; ++seen) told += line->line().starts_with("pass");
    line->signal(SIGKILL);
    line->end();
  }
  EXPECT_EQ(ctl(command).code, 0);
  std::istringstream records(folder.read("r.jsonl"));
  std::string text;
  std::set<std::string> units;
  std::size_t lines = 0;
  for (; std::getline(records, text); ++lines) units.insert(nlohmann::json::parse(text)["unit"]);
  EXPECT_EQ(units.size(), lines) << "none is counted twice";
  EXPECT_GE(lines, told + 8) << "none that was told is lost";
  EXPECT_TRUE(folder.read("r.jsonl").ends_with("\n"));
}

TEST_F(CtlTest, WhatADyingWriterLeftIsTakenAway) {
  folder.write("lot.toml", kRecipe);
  folder.write(
      "r.jsonl",
      "{\"unit\":\"u1\",\"serial\":\"A\",\"verdict\":\"fail\",\"failed_step\":\"check\"}\n{\"unit\":\"u2\",");
  EXPECT_EQ(ctl({"records", "summary", "r.jsonl"}).out,
            "units: 1, in 1 records\nyield: 0.0 % (0)\nfirst-pass yield: 0.0 % (0)\nfailed at check: 1\n");
  EXPECT_EQ(ctl({"provision", "lot.toml", "--dry-run", "--records", "r.jsonl"}).code, 0);
  const std::string records = folder.read("r.jsonl");
  EXPECT_EQ(std::ranges::count(records, '\n'), 2);
  EXPECT_THAT(records, HasSubstr("\"failed_step\":\"check\"}\n{\"unit\":"));
  EXPECT_THAT(records, HasSubstr("\"dry_run\":true"));
  EXPECT_THAT(
      ctl({"records", "summary", "r.jsonl", "--csv"}).out,
      HasSubstr("figure,step,value\nunits,,1\nrecords,,1\npassed,,0\nfirst_pass,,0\nfailures,check,1\n"))
      << "a rehearsal is no unit";
}

}  // namespace
}  // namespace qv5123
