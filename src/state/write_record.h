#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "state/value_events.h"

namespace qv5123 {

/// One line of the journal of writes: something that left for the chip, and what came of it.
struct WriteRecord {
  enum class Result {
    sent,
    cut_short,  ///< a flush left in part only
    cancelled,
    lost,  ///< the port was not open, or not all the time
  };
  struct Value {
    std::string name;        ///< within the page
    std::optional<int> old;  ///< what the chip was known to hold before
    int now = 0;
    friend bool operator==(const Value&, const Value&) = default;
  };
  std::chrono::sys_time<std::chrono::milliseconds> time;  ///< when it was over
  std::string page;                                       ///< "awb"; may be empty
  std::string control;                                    ///< as the user knows it; may be empty
  std::vector<Value> values;
  /// Flush by flush, also what did not leave; an empty one stands for bytes that are no registers.
  Traffic flushes;
  std::size_t flushes_left = 0;
  std::size_t plain_bytes = 0;  ///< that left and are no registers
  Result result = Result::sent;
  friend bool operator==(const WriteRecord&, const WriteRecord&) = default;
};

WriteRecord record_of(const WriteEvent& event, std::chrono::system_clock::time_point time);

/// What stands in a journal where the port was opened, closed or lost.
WriteRecord connection_record(std::chrono::system_clock::time_point time);
bool is_connection(const WriteRecord& record);

/// Whether it only asks the chip for something and writes nothing.
bool is_question(const WriteRecord& record);

/// "sent", "cut short", "cancelled", "port lost"; how much of it left where that is not all.
std::string result_text(const WriteRecord& record);
/// "a_slope 12 -> 20", the values joined by ", "; what was not known before is a "?".
std::string values_text(const WriteRecord& record);
/// The flushes as hex pairs of register and value, "9209 9222 93cc | 2001"; plain bytes as "(12 bytes)".
std::string registers_text(const WriteRecord& record);

/// The record as a line of a journal's file, without its end: eight fields between tabs.
///
///     <ms since 1970> <page> <control> <values> <flushes> <result> <flushes left> <plain bytes>
///
/// Values are "a_slope=12>20" between blanks, flushes "9209 9222|2001", one of plain bytes "-". In page and
/// control a backslash stands before "\", "t" for a tab and "n" for a line end. The button "A" of the AWB
/// page, which sets a slope from 12 to 20, is with a blank for each tab
///
///     1795315861123 awb A a_slope=12>20 0d00 0d14 sent 1 0
///
std::string journal_line(const WriteRecord& record);
/// The record that a line was made from; nothing where it is none.
std::optional<WriteRecord> read_journal_line(std::string_view line);

}  // namespace qv5123
