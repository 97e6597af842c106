#include <benchmark/benchmark.h>

#include <filesystem>

#include "long_journal.h"

namespace qv5123 {
namespace {

void journal_of_100000_writes_opened(benchmark::State& state) {
  const auto file = std::filesystem::temp_directory_path() / "qv5123_benchmark.journal";
  const WriteJournal journal = long_journal();
  write_journal(file, journal);
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
