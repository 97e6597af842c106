#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "state/write_record.h"

namespace qv5123 {

/// What left for the chip, in order. Kept as the lines of its file, so that a write takes little more memory
/// than its text; records are made when they are looked at. A copy shares all but the last lines with what it
/// was made of, so that it costs little, and may be looked at on another thread.
class WriteJournal {
 public:
  /// What is kept at most, in bytes of lines; beyond it the older half goes.
  static constexpr std::size_t kMostBytes = std::size_t{20} << 20;

  explicit WriteJournal(std::size_t most_bytes = kMostBytes) : most_bytes_(most_bytes) {}

  void add(const WriteRecord& record) { add_line(journal_line(record)); }
  /// A line that read_journal_line() takes, without its end.
  void add_line(std::string_view line);

  std::size_t size() const { return pieces_.size() * kPieceLines + last_.ends.size() - skipped_; }
  /// How many older ones have gone.
  std::size_t dropped() const { return dropped_; }
  std::string_view line(std::size_t i) const;
  WriteRecord at(std::size_t i) const;
  /// Bytes of memory.
  std::size_t memory() const;

 private:
  static constexpr std::size_t kPieceLines = 512;
  struct Piece {
    std::string text;                 // the lines, with their ends
    std::vector<std::uint32_t> ends;  // behind each line
    std::string_view line(std::size_t i) const;
    std::size_t memory() const { return text.capacity() + ends.capacity() * sizeof(std::uint32_t); }
  };
  void drop_older_half();

  std::size_t most_bytes_;
  std::vector<std::shared_ptr<const Piece>> pieces_;  // of kPieceLines each, which nobody changes any more
  Piece last_;
  std::size_t skipped_ = 0;  // lines of the first piece that are dropped
  std::size_t bytes_ = 0;
  std::size_t dropped_ = 0;
};

/// What a user looks for in a journal.
struct WriteFilter {
  std::string words;       ///< all between its blanks must occur, in small letters or capitals
  bool questions = false;  ///< also what only asks
};

/// A filter made ready for many lines.
class WriteMatcher {
 public:
  explicit WriteMatcher(const WriteFilter& filter);
  /// Whether a journal's line holds all words: in page, control, names, numbers, registers or result.
  bool matches(std::string_view line) const;

 private:
  std::vector<std::string> words_;
  bool questions_ = false;
};

/// What the chip was last told of each value, by its full name, "awb.a_slope".
using KnownValues = std::map<std::string, int>;

/// What was told by the first `count` writes of those that the journal holds; not what did not leave as a
/// whole, nothing from before the port was closed or lost, and nothing that a write without names may have
/// changed since, such as a reset. Values that only later ones changed are what they are known to have been
/// before that.
KnownValues values_after(const WriteJournal& journal, std::size_t count);

/// What a journal's file holds, as far as it can be read.
struct OpenedJournal {
  WriteJournal journal;
  std::vector<std::string> remarks;  ///< what is missing, in words for the user
  bool opens = true;                 ///< whether the file can be read at all
};

/// The first line of a journal's file.
std::string journal_head(std::chrono::system_clock::time_point start);
/// Reads a journal's text. A text that is none, or is cut or damaged, is told of and read as far as it goes.
OpenedJournal open_journal(std::string_view text);

}  // namespace qv5123
