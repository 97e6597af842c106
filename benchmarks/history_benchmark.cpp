#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include "state/write_journal.h"
#include "state/write_journal_files.h"

namespace qv5123 {
namespace {

constexpr std::size_t kWrites = 100'000;

/// What a page's control sends: a value or two, and a flush or two.
WriteRecord usual_write(int i) {
  WriteEvent event;
  event.page = "dynamic";
  event.control = "Saturation";
  event.values = {{7, "indoor.saturation", i % 100, (i + 1) % 100}};
  event.batches = {{{0xFA, 1}}, {{0x60, 1}, {0x61, static_cast<std::uint8_t>(i)}}, {{0xFA, 0}}};
  event.result = {.chunks_sent = 3, .bytes_sent = 24};
  return record_of(event, std::chrono::system_clock::time_point(std::chrono::seconds(1'763'812'800 + i)));
}

WriteJournal long_journal() {
  WriteJournal journal;
  for (std::size_t i = 0; i < kWrites; ++i) journal.add(usual_write(static_cast<int>(i)));
  return journal;
}

void journal_of_100000_writes_opened(benchmark::State& state) {
  const auto file = std::filesystem::temp_directory_path() / "qv5123_benchmark.journal";
  const WriteJournal journal = long_journal();
  {
    std::ofstream stream(file, std::ios::binary);
    stream << journal_head({});
    for (std::size_t i = 0; i < journal.size(); ++i) stream << journal.line(i) << '\n';
  }
  for (auto _ : state) {
    if (open_journal_file(file).journal.size() != kWrites) state.SkipWithError("not all of it");
  }
  std::filesystem::remove(file);
  state.counters["bytes_per_write"] =
      static_cast<double>(journal.memory()) / static_cast<double>(journal.size());
}
BENCHMARK(journal_of_100000_writes_opened)->Unit(benchmark::kMillisecond);

/// What the window's History does for a keystroke, piece after piece.
void journal_of_100000_writes_filtered(benchmark::State& state) {
  const WriteJournal journal = long_journal();
  for (auto _ : state) {
    const WriteMatcher matcher({"saturation 42", false});
    std::size_t found = 0;
    for (std::size_t i = 0; i < journal.size(); ++i) found += matcher.matches(journal.line(i)) ? 1 : 0;
    benchmark::DoNotOptimize(found);
  }
}
BENCHMARK(journal_of_100000_writes_filtered)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qv5123
