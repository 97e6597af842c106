#include "provision/production_line.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <sstream>

#include "base/virtual_scheduler.h"
#include "provision/dry_run.h"
#include "support/source_folder.h"
#include "support/temporary_folder.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr unsigned kRate = 19200;

LineOptions line_with(milliseconds latency, FaultRates faults = {}) {
  LineOptions line;
  line.line_rate = kRate;
  line.latency = latency;
  line.faults = faults;
  return line;
}

/// Boards beside each other, on time that is computed.
class ProductionLineTest : public testing::Test, protected LineView {
 protected:
  ProductionLineTest() {
    for (const char* name : {"sample.dat", "firmware.bin", "fontT_16x24_.bin", "regu.xml"})
      std::filesystem::copy_file(test::source_folder() / "resources" / name, folder_ / name);
  }

  /// A line for the recipe, which must be right.
  void set_up(const std::string& recipe, ProductionLine::Options options = {}) {
    ReadRecipe read = read_recipe(folder_.write("lot.toml", recipe));
    ASSERT_EQ(read.problem, "");
    recipe_ = std::move(read.recipe);
    records_.emplace(records_path_);
    line_.emplace(scheduler_, background_, recipe_, *records_, static_cast<LineView&>(*this),
                  std::move(options));
  }
  SimulatedPort& add(const std::string& name, const LineOptions& options = line_with(milliseconds(0))) {
    auto port = std::make_unique<SimulatedPort>(scheduler_, name, options);
    SimulatedPort& added = *port;
    line_->add(std::move(port));
    return added;
  }
  void run() {
    line_->start();
    wait_for([this] { return line_->over(); });
  }
  void time(milliseconds time) {
    const milliseconds end = scheduler_.now() + time;
    scheduler_.call_after(time, [] {});
    scheduler_.run_until([&] { return scheduler_.now() >= end; });
  }
  /// Lets an hour pass at most.
  void wait_for(const std::function<bool()>& condition) {
    const milliseconds end = scheduler_.now() + std::chrono::hours(1);
    scheduler_.run_until([&] { return condition() || scheduler_.now() > end; });
    ASSERT_TRUE(condition());
  }
  /// The record of the port's last unit.
  RecordJson record_of(const std::string& port) const {
    std::istringstream lines(folder_.read("records"));
    std::string line;
    RecordJson found;
    while (std::getline(lines, line)) {
      RecordJson record = RecordJson::parse(line);
      if (record["port"] == port) found = std::move(record);
    }
    return found;
  }
  void unit_over(const PlaceState& place, const UnitRecord& record) override {
    over_.push_back(place.port + " " + record.verdict);
  }
  void step_began(const PlaceState& place) override {
    if (on_step_) on_step_(place);
  }
  void trouble(const std::string& text) override { troubles_.push_back(text); }

  test::TemporaryFolder folder_;
  VirtualScheduler scheduler_;
  InlineWork background_{scheduler_};
  Recipe recipe_;
  std::filesystem::path records_path_ = folder_ / "records";
  std::optional<RecordBook> records_;
  std::vector<std::string> over_;
  std::vector<std::string> troubles_;
  std::function<void(const PlaceState&)> on_step_;
  std::optional<ProductionLine> line_;
};

constexpr char kAllSteps[] = R"(
description = "regu.xml"
[[step]]
do = "expect"
serial = "QV512????"
console = "camera ISP"
[[step]]
do = "firmware"
file = "firmware.bin"
[[step]]
do = "font"
file = "fontT_16x24_.bin"
[[step]]
do = "settings"
file = "sample.dat"
set = { "version.sw[2]" = 7 }
serial = { counter = "serials", prefix = "L7-", digits = 4, entry = 1010 }
[[step]]
do = "pages"
pages = ["front", "awb", "dynamic", "gamma"]
[[step]]
do = "registers"
set = { GAIN_MAX_H = 0x12, "0xF923&0x0F" = 5 }
[[step]]
do = "check"
registers = { "GAIN_MAX_H.HIGH" = 0x12, "0xF923&0x0F" = 5 }
values."awb.a_slope" = { least = -800, most = 800 }
[[step]]
do = "lsc"
most_ripple = 12.0
[[step]]
do = "matrix"
corners = [[360, 180], [1560, 180], [1560, 900], [360, 900]]
most_mean = 6.0
most_worst = 20.0
[[step]]
do = "report"
file = "report-{serial}.json"
[[step]]
do = "factory_copy"
)";

TEST_F(ProductionLineTest, AllStepsOnFourBoardsOfWhichOneIsPulledOutOneLiesAndOneIsSlow) {
  set_up(kAllSteps);
  add("good");
  SimulatedPort& pulled = add("pulled");
  SimulatedPort& lying = add("lying");
  SimulatedPort& slow = add("slow", line_with(milliseconds(40)));
  lying.chip().set_reply(0x36, [](const ChipState&) { return std::string(40, '0'); });
  on_step_ = [&](const PlaceState& place) {
    if (place.port == "pulled" && place.step == "font") pulled.unplug();
  };
  run();

  EXPECT_EQ(record_of("good")["why"], RecordJson()) << record_of("good").dump(2);
  EXPECT_EQ(record_of("good")["verdict"], "pass");
  EXPECT_EQ(record_of("slow")["verdict"], "pass") << record_of("slow").dump(2);
  EXPECT_EQ(record_of("pulled")["failed_step"], "font");
  EXPECT_EQ(record_of("pulled")["why"], "pulled is gone");
  EXPECT_EQ(record_of("lying")["failed_step"], "pages");
  EXPECT_THAT(record_of("lying")["why"].get<std::string>(),
              testing::AllOf(testing::StartsWith("awb: "), HasSubstr(" differ: "), HasSubstr("chip 0")));
  EXPECT_EQ(record_of("lying")["retries"], 2) << "it was given two more chances";
  EXPECT_EQ(line_->passed(), 2);
  EXPECT_EQ(line_->failed(), 2);

  const RecordJson good = record_of("good");
  EXPECT_EQ(good["steps"].size(), 11U);
  EXPECT_THAT(good["serial"].get<std::string>(), testing::StartsWith("L7-000"));
  EXPECT_EQ(good["files"]["firmware.bin"].get<std::string>().size(), 64U);
  EXPECT_LT(good["steps"][7]["values"]["ripple"], 5.0);
  EXPECT_GT(good["steps"][7]["values"]["ripple_before"], 15.0);
  EXPECT_LT(good["steps"][8]["values"]["mean"], 6.0);
  const std::string serial = record_of("slow")["serial"];
  EXPECT_EQ(RecordJson::parse(folder_.read("report-" + serial + ".json"))["serial"], serial);
  for (std::size_t i = 0; i < serial.size(); ++i)
    EXPECT_EQ(slow.chip().state().user_data.entry(1010 + i), serial[i]);
  EXPECT_EQ(slow.chip().isp(0xA0A), 0x12);
}

constexpr char kShort[] = R"(
[[step]]
do = "registers"
set = { "0xF923" = 5 }
)";

TEST_F(ProductionLineTest, ASlowChipsGreetingIsNotTakenForAnAnswerAndItIsMeasuredAllTheSame) {
  set_up(kShort + std::string("[[step]]\ndo = \"lsc\"\nmost_ripple = 12\n"));
  add("slow", line_with(milliseconds(300)));
  run();
  EXPECT_EQ(record_of("slow")["verdict"], "pass") << record_of("slow").dump(2);
  EXPECT_EQ(record_of("slow")["steps"][0]["retries"], 0);
  EXPECT_EQ(record_of("slow")["serial"], "QV5120042");
}

TEST_F(ProductionLineTest, AReportNamedByItsSerialNumberNeedsOne) {
  set_up("[[step]]\ndo = \"report\"\nfile = \"{serial}.json\"\n");
  SimulatedPort& port = add("silent");
  // Its greeting is lost.
  for (int at = 0; at < 500; at += 10)
    scheduler_.call_after(milliseconds(at), [&port] { port.link().reply().forget(); });
  run();
  EXPECT_EQ(record_of("silent")["why"], "the report's name has the serial number in it, and there is none");
  EXPECT_FALSE(std::filesystem::exists(folder_ / ".json"));
}

TEST_F(ProductionLineTest, WatchesForOneBoardAfterTheOther) {
  ProductionLine::Options watch;
  watch.watch = true;
  watch.metrics = folder_ / "line.prom";
  set_up(kShort, watch);
  SimulatedPort& port = add("fixture");
  port.unplug();
  line_->start();
  const auto boards = [this](std::size_t count) { return [this, count] { return over_.size() == count; }; };
  time(milliseconds(5000));
  EXPECT_TRUE(over_.empty());
  port.plug_in();
  wait_for(boards(1));
  time(milliseconds(20'000));
  EXPECT_EQ(over_.size(), 1U) << "the board that is done is not another one";
  port.unplug();
  time(milliseconds(2000));
  port.plug_in();
  wait_for(boards(2));
  EXPECT_THAT(folder_.read("line.prom"), HasSubstr("\nqv5123_units_total{verdict=\"pass\"} 2\n"));
  time(milliseconds(3000));
  port.plug_in();
  port.chip().announce();
  // Another one came between two looks.
  wait_for(boards(3));
  line_->interrupt();
  wait_for([this] { return line_->over(); });
  EXPECT_EQ(over_.size(), 3U);
  EXPECT_FALSE(line_->incomplete());
}

TEST_F(ProductionLineTest, AnInterruptBeforeAnyUnitIsToldFromAnEnd) {
  ProductionLine::Options watch;
  watch.watch = true;
  set_up(kShort, watch);
  add("fixture").unplug();
  line_->start();
  time(milliseconds(1000));
  line_->interrupt();
  EXPECT_TRUE(line_->over());
  EXPECT_TRUE(line_->incomplete());
}

TEST_F(ProductionLineTest, AnInterruptAtTheMomentOfAnUnpluggingLosesNoUnit) {
  set_up("[[step]]\ndo = \"firmware\"\nfile = \"firmware.bin\"\n");
  SimulatedPort& port = add("board");
  on_step_ = [&](const PlaceState&) {
    scheduler_.call_after(milliseconds(100), [&] {
      port.unplug();
      scheduler_.call_after(milliseconds(0), [this] { line_->interrupt(); });
    });
  };
  run();
  EXPECT_EQ(record_of("board")["why"], "board is gone");
}

TEST_F(ProductionLineTest, TheSecondInterruptEndsAtTheNextBlock) {
  set_up("[[step]]\ndo = \"firmware\"\nfile = \"firmware.bin\"\n");
  SimulatedPort& port = add("board");
  on_step_ = [this](const PlaceState&) {
    scheduler_.call_after(milliseconds(400), [this] { line_->interrupt(); });
    scheduler_.call_after(milliseconds(500), [this] { line_->interrupt(); });
  };
  run();
  EXPECT_EQ(record_of("board")["verdict"], "stopped");
  time(milliseconds(1000));
  EXPECT_FALSE(port.chip().transfer_open()) << "the chip takes commands again";
}

TEST_F(ProductionLineTest, TheSecondInterruptEndsAWait) {
  set_up("[[step]]\ndo = \"registers\"\nwait = 600000\nset = { 0xF923 = 5 }\n");
  SimulatedPort& port = add("board");
  on_step_ = [this](const PlaceState&) {
    for (int i = 0; i < 2; ++i) scheduler_.call_after(milliseconds(400), [this] { line_->interrupt(); });
  };
  run();
  EXPECT_EQ(record_of("board")["verdict"], "stopped");
  EXPECT_LT(record_of("board")["seconds"], 2.0);
  EXPECT_EQ(port.chip().isp(0x923), 0);
}

TEST_F(ProductionLineTest, WithoutRoomForRecordsNoUnitBegins) {
  const std::filesystem::path foreign = folder_.write("foreign", "somebody else's");
  for (const auto& path : {folder_ / "no" / "folder" / "records", folder_.path(), foreign}) {
    records_path_ = path;
    set_up(kShort);
    SimulatedPort& port = add("board");
    run();
    EXPECT_NE(line_->record_trouble(), "");
    EXPECT_EQ(port.chip().isp(0x923), 0);
    EXPECT_TRUE(over_.empty());
  }
  EXPECT_EQ(folder_.read("foreign"), "somebody else's");
}

TEST_F(ProductionLineTest, RecordsThatCannotBeWrittenAnyMoreEndAWatchedLine) {
  ProductionLine::Options watch;
  watch.watch = true;
  set_up(kShort, watch);
  SimulatedPort& fixture = add("fixture");
  add("empty").unplug();
  line_->start();
  wait_for([this] { return over_.size() == 1; });
  EXPECT_TRUE(std::filesystem::exists(folder_ / "records.room")) << "for those that are under way";
  std::filesystem::remove(folder_ / "records");
  std::filesystem::create_directory(folder_ / "records");
  time(milliseconds(5000));
  fixture.plug_in();
  fixture.chip().announce();
  time(milliseconds(30'000));
  EXPECT_TRUE(line_->over());
  EXPECT_EQ(over_.size(), 1U);
}

TEST_F(ProductionLineTest, ARecordThatOnlyLacksItsLineEndCounts) {
  const std::string records =
      "{\"unit\":\"u0\",\"verdict\":\"fail\",\"dry_run\":true}\n"
      "{\"unit\":\"u1\",\"serial\":\"A\",\"verdict\":\"pass\"}";
  folder_.write("records", records);
  EXPECT_EQ(RecordSummary::of(folder_ / "records").passed, 1U);
  ProductionLine::Options dry;
  dry.dry = true;
  dry.metrics = folder_ / "line.prom";
  set_up(kShort, dry);
  add("board");
  run();
  EXPECT_THAT(folder_.read("records"), testing::StartsWith(records + "\n{\"unit\":"));
  EXPECT_EQ(RecordSummary::of(folder_ / "records").records, 1U);
  EXPECT_THAT(folder_.read("line.prom"),
              testing::AllOf(HasSubstr("{verdict=\"pass\"} 1\n"), testing::Not(HasSubstr("\"fail\"} 1"))))
      << "a rehearsal is no unit";
}

TEST_F(ProductionLineTest, AFaultyLineFailsTruthfullyOrEndsVerified) {
  for (const auto& [name, faults] : std::map<std::string, FaultRates>{{"drop", {.drop = 0.002}},
                                                                      {"corrupt", {.corrupt = 0.002}},
                                                                      {"duplicate", {.duplicate = 0.002}},
                                                                      {"delay", {.delay = 0.002}},
                                                                      {"hangup", {.hangup = 0.002}}}) {
    over_.clear();
    set_up(
        "[[step]]\ndo = \"settings\"\nfile = \"sample.dat\"\n[[step]]\ndo = \"pages\"\npages = [\"lsc\", "
        "\"awb\"]\n"
        "[[step]]\ndo = \"registers\"\nset = { 0xF923 = 5, 0xF924 = 6 }\n");
    for (int i = 0; i < 7; ++i) add("good" + std::to_string(i));
    SimulatedPort& bad = add("bad", line_with(milliseconds(0), faults));
    run();
    EXPECT_EQ(std::ranges::count_if(over_, [](const auto& text) { return text.ends_with(" pass"); }) -
                  (record_of("bad")["verdict"] == "pass"),
              7)
        << name;
    if (record_of("bad")["verdict"] != "pass") {
      EXPECT_NE(record_of("bad")["why"], "") << name;
      continue;
    }
    EXPECT_EQ(bad.chip().isp(0x923), 5) << name;
    EXPECT_EQ(bad.chip().isp(0x924), 6) << name;
    const auto& settings = std::get<SettingsStep>(recipe_.steps[0].work).image;
    for (std::size_t entry = 440; entry < 452; ++entry)
      EXPECT_EQ(bad.chip().state().user_data.entry(entry), settings.entry(entry)) << name;
  }
}

}  // namespace
}  // namespace qv5123
