#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>

#include "state/write_journal.h"
#include "state/write_journal_files.h"

namespace qv5123 {

inline constexpr std::size_t kWrites = 100'000;

/// What a page's control sends: a value or two, and a flush or two.
inline WriteRecord usual_write(int i) {
  WriteEvent event;
  event.page = "dynamic";
  event.control = "Saturation";
  event.values = {{7, "indoor.saturation", i % 100, (i + 1) % 100}};
  event.batches = {{{0xFA, 1}}, {{0x60, 1}, {0x61, static_cast<std::uint8_t>(i)}}, {{0xFA, 0}}};
  event.result = {.chunks_sent = 3, .bytes_sent = 24};
  return record_of(event, std::chrono::system_clock::time_point(std::chrono::seconds(1'763'812'800 + i)));
}

/// kWrites of them.
inline WriteJournal long_journal() {
  WriteJournal journal;
  for (std::size_t i = 0; i < kWrites; ++i) journal.add(usual_write(static_cast<int>(i)));
  return journal;
}

inline void write_journal(const std::filesystem::path& file, const WriteJournal& journal) {
  std::ofstream stream(file, std::ios::binary);
  stream << journal_head({});
  for (std::size_t i = 0; i < journal.size(); ++i) stream << journal.line(i) << '\n';
}

}  // namespace qv5123
