#include "state/write_journal.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/text.h"
#include "state/chip_touch.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

constexpr std::string_view kFirstWords = "QV5123 writes 1 ";

char small(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// What stands behind the time.
std::string_view searched(std::string_view line) {
  return line.substr(std::min(line.find('\t'), line.size()));
}

std::string full_name(const WriteRecord& record, const WriteRecord::Value& value) {
  return record.page + "." + value.name;
}

std::string lines_text(std::size_t lines) {
  return lines == 1 ? "1 line" : std::to_string(lines) + " lines";
}

/// Which values single registers hold, for writes that do not name them.
class ValueRegisters {
 public:
  ValueRegisters();
  /// What a record may have changed beside the values that it names.
  ChipTouch touched_by(const WriteRecord& record) const;
  template <class Does>
  void each_name(const std::bitset<256>& registers, Does does) const {
    if (registers.none()) return;
    for (const auto& [address, name] : names_)
      if (registers.test(address)) does(name);
  }

 private:
  std::bitset<256> registers_;
  std::vector<std::pair<std::size_t, std::string>> names_;
};

ValueRegisters::ValueRegisters() {
  for (const char* page : kTuningPages) {
    const std::unique_ptr<TuningModel> model = make_model(page);
    for (const FieldInfo& field : model->fields()) {
      if (field.address == Field::kNowhere) continue;
      const auto address = static_cast<std::size_t>(field.address);
      registers_.set(address);
      names_.emplace_back(address, std::string(page) + "." + field.name);
    }
  }
}

ChipTouch ValueRegisters::touched_by(const WriteRecord& record) const {
  using Result = WriteRecord::Result;
  ChipTouch touch;
  // A chip that was away may hold anything.
  touch.everything = record.result == Result::lost;
  if (!record.values.empty()) return touch;
  for (const Batch& flush : record.flushes) touch.add(flush, registers_);
  // The flush that was cut short need not be among them.
  touch.everything = touch.everything || record.plain_bytes > 0 || record.result == Result::cut_short;
  return touch;
}

/// What is known once `record` is over.
void follow(KnownValues& known, const WriteRecord& record, const ValueRegisters& registers) {
  const ChipTouch touch = registers.touched_by(record);
  if (touch.everything) known.clear();
  registers.each_name(touch.registers, [&known](const std::string& name) { known.erase(name); });
  for (const WriteRecord::Value& value : record.values) {
    if (record.result == WriteRecord::Result::sent)
      known[full_name(record, value)] = value.now;
    else
      known.erase(full_name(record, value));
  }
}

/// Adds what a record from after the moment tells of it. `changed` are the names of what may have been
/// another since then. False when no later record tells anything any more.
bool look_back(KnownValues& known, std::set<std::string>& changed, const WriteRecord& record,
               const ValueRegisters& registers) {
  for (const WriteRecord::Value& value : record.values) {
    const std::string name = full_name(record, value);
    if (changed.insert(name).second && value.old) known.try_emplace(name, *value.old);
  }
  const ChipTouch touch = registers.touched_by(record);
  registers.each_name(touch.registers, [&changed](const std::string& name) { changed.insert(name); });
  return !touch.everything;
}

}  // namespace

std::string_view WriteJournal::Piece::line(std::size_t i) const {
  const std::size_t start = i == 0 ? 0 : ends[i - 1];
  return std::string_view(text).substr(start, ends[i] - start - 1);
}

void WriteJournal::add_line(std::string_view line) {
  if (last_.ends.size() == kPieceLines)
    pieces_.push_back(std::make_shared<const Piece>(std::exchange(last_, {})));
  last_.text += line;
  last_.text += '\n';
  last_.ends.push_back(static_cast<std::uint32_t>(last_.text.size()));
  bytes_ += line.size() + 1;
  if (bytes_ > most_bytes_ && size() > 1) drop_older_half();
}

void WriteJournal::drop_older_half() {
  const std::size_t half = size() / 2;
  for (std::size_t i = 0; i < half; ++i) bytes_ -= line(i).size() + 1;
  skipped_ += half;
  dropped_ += half;
  const std::size_t gone = std::min(skipped_ / kPieceLines, pieces_.size());
  pieces_.erase(pieces_.begin(), pieces_.begin() + static_cast<std::ptrdiff_t>(gone));
  skipped_ -= gone * kPieceLines;
}

std::string_view WriteJournal::line(std::size_t i) const {
  const std::size_t at = skipped_ + i;
  const std::size_t piece = at / kPieceLines;
  return piece < pieces_.size() ? pieces_[piece]->line(at % kPieceLines) : last_.line(at % kPieceLines);
}

std::size_t WriteJournal::memory() const {
  std::size_t bytes = last_.memory();
  for (const auto& piece : pieces_) bytes += piece->memory();
  return bytes;
}

WriteRecord WriteJournal::at(std::size_t i) const {
  return read_journal_line(line(i)).value_or(WriteRecord{});
}

WriteMatcher::WriteMatcher(const WriteFilter& filter)
    : words_(filter_words(filter.words)), questions_(filter.questions) {}

bool WriteMatcher::matches(std::string_view line) const {
  const std::string_view text = searched(line);
  const auto holds = [text](const std::string& word) {
    const auto same = [](char a, char b) { return small(a) == b; };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
  };
  if (!std::all_of(words_.begin(), words_.end(), holds)) return false;
  if (questions_) return true;
  const std::optional<WriteRecord> record = read_journal_line(line);
  return record && !is_question(*record);
}

KnownValues values_after(const WriteJournal& journal, std::size_t count) {
  const ValueRegisters registers;
  KnownValues known;
  std::size_t i = 0;
  for (; i < std::min(count, journal.size()); ++i) follow(known, journal.at(i), registers);
  std::set<std::string> changed;
  while (i < journal.size() && look_back(known, changed, journal.at(i), registers)) ++i;
  return known;
}

std::string journal_head(std::chrono::system_clock::time_point start) {
  return std::string(kFirstWords) + iso_time(start) + "\n";
}

OpenedJournal open_journal(std::string_view text) {
  OpenedJournal opened;
  if (!text.starts_with(kFirstWords)) {
    opened.remarks.push_back("This is no journal of writes.");
    return opened;
  }
  std::size_t damaged = 0;
  std::size_t at = text.find('\n');
  for (at = std::min(at, text.size() - 1) + 1; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) {
      opened.remarks.push_back("Its last write is cut and left out.");
      break;
    }
    const std::string_view line = text.substr(at, end - at);
    at = end + 1;
    // A run that went on after its file was removed began it anew.
    if (line.starts_with(kFirstWords)) continue;
    if (read_journal_line(line)) {
      opened.journal.add_line(line);
    } else {
      ++damaged;
    }
  }
  if (damaged > 0)
    opened.remarks.push_back("Left out, for they cannot be read: " + lines_text(damaged) + ".");
  if (opened.journal.dropped() > 0)
    opened.remarks.push_back("The oldest " + std::to_string(opened.journal.dropped()) +
                             " writes are left out.");
  return opened;
}

}  // namespace qv5123
