// How long "Measure all 24" takes a user, in the time of a simulated board behind a paced line.
#include <benchmark/benchmark.h>

#include <functional>

#include "simulator/board_line.h"
#include "support/fake_page_host.h"
#include "tuning/matrix_desk.h"

namespace qv5123 {
namespace {

/// The linear matrix page on a board whose line carries so many bits a second, on a hand-moved clock.
struct PacedBench {
  explicit PacedBench(unsigned baud) : line(chip, {.line_rate = baud, .faults = {}}) {
    line.plug_in();
    chip.set_camera(Camera(Scene{}));
    wire.sender.chip = [this](const std::string& bytes) {
      line.put({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, now());
    };
    run(1000);
  }

  TimePoint now() const { return TimePoint{std::chrono::hours{1} + wire.scheduler.now()}; }
  void step() {
    wire.advance(1);
    const auto said = line.take(now());
    if (!said.empty()) wire.receive({said.begin(), said.end()});
  }
  void run(int milliseconds) {
    for (int i = 0; i < milliseconds; ++i) step();
  }

  SimulatedChip chip;
  BoardLine line;
  test::FakeWire wire;
  test::FakePageHost host{wire};
  MatrixDesk desk{host, host.doc.user_data};
};

void set_corners(PacedBench& bench) {
  bench.desk.picker().click_switch(true);
  bench.run(5000);
  for (const std::size_t patch : kCornerPatches) {
    const PicturePoint middle = patch_middle(bench.chip.camera()->scene(), patch);
    bench.desk.choose_patch(patch);
    bench.desk.picker().type_x(middle.x);
    bench.desk.picker().type_y(middle.y);
    bench.run(2000);
    bench.desk.set_corner();
  }
}

void measure_all_24_at_19200_baud(benchmark::State& state) {
  for (auto _ : state) {
    PacedBench bench(19200);
    set_corners(bench);
    const auto begin = bench.now();
    bench.desk.measure_all();
    while (bench.desk.measuring_all()) bench.step();
    if (!bench.desk.run_complaint().empty()) state.SkipWithError(bench.desk.run_complaint().c_str());
    state.SetIterationTime(std::chrono::duration<double>(bench.now() - begin).count());
  }
}
BENCHMARK(measure_all_24_at_19200_baud)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qv5123
