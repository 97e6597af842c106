#include "state/write_journal_files.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <utility>

#include "base/append_file.h"
#include "base/atomic_file.h"
#include "base/text.h"

namespace qv5123 {
namespace {

namespace fs = std::filesystem;
using Run = WriteJournalFiles::Run;

constexpr std::string_view kPrefix = "writes-";
constexpr std::string_view kSuffix = ".journal";
/// "20261122-025101"
constexpr std::size_t kStartLength = 15;

/// "2026-11-22T02:51:01.123Z" as "20261122-025101".
std::string name_of_start(std::chrono::system_clock::time_point start) {
  std::string name;
  for (const char c : iso_time(start).substr(0, 19)) {
    if (c == 'T') name += '-';
    if (c >= '0' && c <= '9') name += c;
  }
  return name;
}

/// The same the other way round, to be shown; empty where it is no such name.
std::string start_of_name(const std::string& name) {
  if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) return {};
  std::string start = name.substr(kPrefix.size(), kStartLength);
  if (start.size() != kStartLength || start[8] != '-') return {};
  start.replace(8, 1, " ");
  for (const std::size_t colon : {13, 11}) start.insert(colon, 1, ':');
  for (const std::size_t dash : {6, 4}) start.insert(dash, 1, '-');
  return start;
}

/// The error in words; empty on success.
std::string append_to(const fs::path& path, std::chrono::system_clock::time_point now,
                      const std::string& lines) {
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  // One that was removed meanwhile begins anew, and so does one whose first lines found no room.
  const bool begins = !fs::exists(path, error) || fs::file_size(path, error) == 0;
  return append_lines(path, begins ? journal_head(now) + lines : lines,
                      [](std::string_view) { return Tail::cut; });
}

std::string beginning_of(const fs::path& path, std::uintmax_t limit, bool& whole) {
  std::ifstream file(path, std::ios::binary);
  std::string text(limit + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  whole = text.size() <= limit;
  return text;
}

}  // namespace

OpenedJournal open_journal_file(const fs::path& path, std::uintmax_t limit) {
  std::error_code error;
  OpenedJournal opened;
  if (!fs::is_regular_file(path, error) || !std::ifstream(path)) {
    opened.remarks.push_back(path_text(path) + " cannot be read.");
    return opened;
  }
  bool whole = true;
  std::string text = beginning_of(path, limit, whole);
  // What stands behind the last whole line is cut here, not by whoever wrote it.
  if (!whole) text.resize(text.rfind('\n') + 1);
  opened = open_journal(text);
  if (!whole)
    opened.remarks.push_back("It is longer than " + std::to_string(limit >> 20) +
                             " MB; the rest is left out.");
  return opened;
}

std::vector<Run> journal_runs(const fs::path& folder) {
  std::vector<Run> runs;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code no_size;
    const std::string start = start_of_name(path_text(entry->path().filename()));
    const std::uintmax_t bytes = entry->file_size(no_size);
    if (!start.empty() && !no_size) runs.push_back({entry->path(), start, bytes});
  }
  std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.file > b.file; });
  return runs;
}

void remove_old_journals(const fs::path& folder, std::size_t runs, std::uintmax_t bytes) {
  std::uintmax_t kept = 0;
  std::size_t count = 0;
  for (const Run& run : journal_runs(folder)) {
    kept += run.bytes;
    if (++count <= runs && kept <= bytes) continue;
    std::error_code error;
    fs::remove(run.file, error);
  }
}

WriteJournalFiles::WriteJournalFiles(Scheduler& scheduler, Background& background, Surroundings surroundings)
    : scheduler_(scheduler), background_(background), surroundings_(std::move(surroundings)) {}

fs::path WriteJournalFiles::new_file() {
  written_ = 0;
  return surroundings_.folder / (std::string(kPrefix) + name_of_start(surroundings_.now()) + "-" +
                                 std::to_string(detail::process_number()) + std::string(kSuffix));
}

void WriteJournalFiles::add(std::string_view line) {
  gathered_ += line;
  gathered_ += '\n';
  if (std::exchange(timer_runs_, true)) return;
  scheduler_.call_after(kGather, [this, alive = alive_] {
    if (*alive) flush();
  });
}

void WriteJournalFiles::flush() {
  timer_runs_ = false;
  if (!gathered_.empty()) flows_.spawn(write(std::exchange(gathered_, {})));
}

Task<> WriteJournalFiles::write(std::string lines) {
  const bool begins = own_.empty() || written_ > kMostOfOne;
  if (begins) own_ = new_file();
  written_ += lines.size();
  std::function<std::string()> work = [begins, folder = surroundings_.folder, file = own_,
                                       now = surroundings_.now(), lines = std::move(lines)] {
    // This one is among them by now, and grows up to its own limit.
    if (begins) remove_old_journals(folder, kMostRuns - 1, kMostBytes - kMostOfOne);
    return append_to(file, now, lines);
  };
  const std::string failure = co_await background_.run<std::string>(std::move(work));
  const bool tell = !failure.empty() && !std::exchange(told_, !failure.empty());
  if (failure.empty()) told_ = false;
  if (tell) surroundings_.show_failure("The history is not kept: " + failure);
}

Task<std::vector<Run>> WriteJournalFiles::others() {
  std::function<std::vector<Run>()> work = [folder = surroundings_.folder, own = own_] {
    std::vector<Run> runs = journal_runs(folder);
    std::erase_if(runs, [&own](const Run& run) { return run.file == own; });
    return runs;
  };
  return background_.run<std::vector<Run>>(std::move(work));
}

Task<OpenedJournal> WriteJournalFiles::open(fs::path file) {
  std::function<OpenedJournal()> work = [file = std::move(file)] { return open_journal_file(file); };
  return background_.run<OpenedJournal>(std::move(work));
}

}  // namespace qv5123
