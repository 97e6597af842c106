#include "state/write_journal_files.h"

#include <algorithm>
#include <fstream>
#include <set>
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
/// Between a run's name and the number of its file; sorts behind the point that ends the first one's stem.
constexpr char kPartMark = '_';
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

/// What the names of a run's files begin with: "writes-20261122-025101-77"; "_0002" follows in its second.
std::string run_name(const fs::path& file) {
  const std::string name = path_text(file.stem());
  return name.substr(0, name.find(kPartMark));
}

bool is_later(const Run& a, const Run& b) {
  return std::pair(run_name(a.file), a.file) > std::pair(run_name(b.file), b.file);
}

/// The files of all runs, the latest first.
std::vector<Run> journal_files(const fs::path& folder) {
  std::vector<Run> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code no_size;
    const std::string start = start_of_name(path_text(entry->path().filename()));
    const std::uintmax_t bytes = entry->file_size(no_size);
    if (!start.empty() && !no_size) files.push_back({entry->path(), start, bytes});
  }
  std::sort(files.begin(), files.end(), is_later);
  return files;
}

/// The file, and behind it those in which its run went on.
std::vector<fs::path> with_those_behind(const fs::path& given) {
  // A bare name has no folder to look into.
  const fs::path path = fs::absolute(given);
  std::vector<fs::path> paths;
  if (!start_of_name(path_text(path.filename())).empty())
    for (const Run& file : journal_files(path.parent_path()))
      if (run_name(file.file) == run_name(path) && file.file > path) paths.push_back(file.file);
  paths.push_back(path);
  std::reverse(paths.begin(), paths.end());
  return paths;
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
    opened.opens = false;
    opened.remarks.push_back(path_text(path) + " cannot be read.");
    return opened;
  }
  bool whole = true;
  std::string text;
  for (const fs::path& part : with_those_behind(path))
    if (whole) text += beginning_of(part, limit - text.size(), whole);
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
  for (const Run& file : journal_files(folder)) {
    if (runs.empty() || run_name(runs.back().file) != run_name(file.file)) {
      runs.push_back(file);
    } else {
      runs.back().file = file.file;
      runs.back().bytes += file.bytes;
    }
  }
  return runs;
}

void remove_old_journals(const fs::path& folder, std::size_t runs, std::uintmax_t bytes) {
  std::uintmax_t kept = 0;
  std::set<std::string> names;
  for (const Run& file : journal_files(folder)) {
    kept += file.bytes;
    names.insert(run_name(file.file));
    if (names.size() <= runs && kept <= bytes) continue;
    std::error_code error;
    fs::remove(file.file, error);
  }
}

WriteJournalFiles::WriteJournalFiles(Scheduler& scheduler, Background& background, Surroundings surroundings)
    : scheduler_(scheduler), background_(background), surroundings_(std::move(surroundings)) {}

fs::path WriteJournalFiles::next_file() {
  constexpr int kFourDigits = 10'000;
  written_ = 0;
  if (++parts_ == 1)
    run_ = std::string(kPrefix) + name_of_start(surroundings_.now()) + "-" +
           std::to_string(detail::process_number());
  const std::string part = parts_ == 1 ? "" : kPartMark + std::to_string(kFourDigits + parts_).substr(1);
  return surroundings_.folder / (run_ + part + std::string(kSuffix));
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
  if (begins) own_ = next_file();
  written_ += lines.size();
  const std::size_t others = parts_ == 1 ? kMostRuns - 1 : kMostRuns;
  std::function<std::string()> work = [begins, others, folder = surroundings_.folder, file = own_,
                                       now = surroundings_.now(), lines = std::move(lines)] {
    // This one is not among them yet, and grows up to its own limit.
    if (begins) remove_old_journals(folder, others, kMostBytes - kMostOfOne);
    return append_to(file, now, lines);
  };
  const std::string failure = co_await background_.run<std::string>(std::move(work));
  const bool tell = !failure.empty() && !std::exchange(told_, !failure.empty());
  if (failure.empty()) told_ = false;
  if (tell) surroundings_.show_failure("The history is not kept: " + failure);
}

Task<std::vector<Run>> WriteJournalFiles::others() {
  std::function<std::vector<Run>()> work = [folder = surroundings_.folder, own = run_] {
    std::vector<Run> runs = journal_runs(folder);
    std::erase_if(runs, [&own](const Run& run) { return run_name(run.file) == own; });
    return runs;
  };
  return background_.run<std::vector<Run>>(std::move(work));
}

Task<OpenedJournal> WriteJournalFiles::open(fs::path file) {
  std::function<OpenedJournal()> work = [file = std::move(file)] { return open_journal_file(file); };
  return background_.run<OpenedJournal>(std::move(work));
}

}  // namespace qv5123
