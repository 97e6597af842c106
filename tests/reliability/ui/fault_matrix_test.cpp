// Every operation that talks to the chip under every fault of the line. Each cell runs with a few seeds and
// must not crash or hang, must leave no page half updated, must say what came of it, and must leave a program
// that works once the fault is gone. docs/reliability.md is made of what the cells record.
#include <array>

#include "reliability/ui/fault_matrix_operations.h"

namespace qv5123 {
namespace {

using matrix::End;
using matrix::Operation;
using test::MatrixBench;
using namespace std::chrono_literals;

constexpr std::uint64_t kSeeds = 3;

End wait_for_end(Operation& operation, MatrixBench& bench) {
  End end = End::none;
  bench.wait_until([&] { return (end = operation.end(bench)) != End::none; }, operation.most);
  return end;
}

/// The user's one try on the line as it is, and what the page shows after it.
End try_once(Operation& operation, MatrixBench& bench) {
  const std::string before = bench.snapshot();
  bench.statuses.clear();
  bench.user.messages.clear();
  bench.line.take_blocks();
  operation.start(bench);
  const End end = wait_for_end(operation, bench);
  if (end != End::none) operation.check(bench, end, before);
  return end;
}

/// One cell with one seed.
End run_cell(Operation operation, const test::Fault& fault, std::uint64_t seed) {
  MatrixBench bench;
  bench.line.chip().set_camera(Camera(*scene_named("flat")));
  bench.open(operation.page);
  operation.prepare(bench);
  bench.line.suffer(fault, seed);
  const End end = try_once(operation, bench);
  const bool waits_for_chip = operation.patient && fault.silent;
  EXPECT_EQ(end == End::none, waits_for_chip) << "an operation comes to its end";
  bench.line.cure();
  const bool spoilt = fault.spoils_bytes() || (operation.credulous && fault.flood_step > 0);
  if (end == End::done && (operation.proven || !spoilt)) operation.arrived(bench);
  if (waits_for_chip) {
    EXPECT_EQ(wait_for_end(operation, bench), End::done) << "what waits for the chip ends when it answers";
  }
  operation.prepare(bench);
  EXPECT_EQ(try_once(operation, bench), End::done)
      << "what failed before works, nothing of the fault is left";
  operation.arrived(bench);
  return end;
}

int parts() {
  return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

/// How often it came to each end, in the order of End.
using Ends = std::array<int, matrix::kEnds>;

std::string done_or(const Ends& ends, const char* otherwise) {
  return std::to_string(ends[1]) + " done, " + std::to_string(ends[2]) + otherwise;
}

std::string cell_text(const Ends& ends, bool proven) {
  if (!proven) return done_or(ends, " told");
  const auto [none, verified, told, differs, unverified] = ends;
  std::string text = std::to_string(verified) + " verified, " + std::to_string(differs) + " differs, " +
                     std::to_string(unverified) + " no answer";
  return told > 0 ? text + ", " + std::to_string(told) + " told" : text;
}

/// Fills a cell of the table: what came of it with each seed.
void record(const test::Fault& fault, const std::function<End(std::uint64_t seed)>& run,
            const std::function<std::string(const Ends&)>& text) {
  const int parts_before = parts();
  Ends ends{};
  for (std::uint64_t seed = 1; seed <= kSeeds; ++seed) {
    SCOPED_TRACE(std::string(fault.name) + ", seed " + std::to_string(seed));
    ++ends[static_cast<std::size_t>(run(seed))];
  }
  EXPECT_TRUE(fault.rates.delay == 0 || ends[1] > 0)
      << "a line that is slow now and then is no reason to fail";
  const std::string result = ends[0] > 0 ? "waits" : text(ends);
  testing::Test::RecordProperty(fault.name, parts() > parts_before ? "BROKEN" : result);
}

class FaultMatrix : public testing::TestWithParam<Operation> {};

TEST_P(FaultMatrix, Holds) {
  RecordProperty("operation", GetParam().name);
  for (const test::Fault& fault : test::faults(GetParam().rate)) {
    record(
        fault, [&](std::uint64_t seed) { return run_cell(GetParam(), fault, seed); },
        [](const Ends& ends) { return cell_text(ends, GetParam().proven); });
  }
}

INSTANTIATE_TEST_SUITE_P(Operations, FaultMatrix, testing::ValuesIn(matrix::operations()));

/// The start has no second try, so it is a table of its own: the window is there and tells what came.
TEST(FaultMatrixStart, OpensTheRegistersPageWhateverTheLineDoes) {
  RecordProperty("operation", "start");
  for (const test::Fault& fault : test::faults()) {
    record(
        fault,
        [&](std::uint64_t seed) {
          MatrixBench bench;
          bench.line.suffer(fault, seed);
          bench.wire.scheduler.call_after(60ms, [&] { bench.line.chip().announce(); });
          PortInUse::Surroundings port;
          port.open = [](std::string, LineSettings) -> Task<OpenResult> { co_return OpenResult{}; };
          bench.view->use_port({}, std::move(port));
          bench.view->start({});
          EXPECT_TRUE(bench.wait_until([&] { return !bench.view->starting(); }, 10s));
          EXPECT_EQ(bench.view->pages().current(), PageId::registers);
          const End end = bench.console_has("Load Version ok..") ? End::done : End::told;
          bench.line.cure();
          bench.click("Load From ISP");
          EXPECT_TRUE(bench.wait_until([&] { return bench.control("Load From ISP")->isEnabled(); }, 20s));
          return end;
        },
        [](const Ends& ends) { return done_or(ends, " silent"); });
  }
}

}  // namespace
}  // namespace qv5123
