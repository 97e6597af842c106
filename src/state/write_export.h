#pragma once

#include <string>
#include <vector>

#include "state/write_record.h"

/// Records of the journal of writes as files and for the clipboard. All texts are UTF-8, times in UTC.
namespace qv5123 {

using WriteRecords = std::vector<WriteRecord>;

/// A line each, its parts between two blanks:
/// "2026-11-22T02:51:01.123Z  awb  Parameter-1  a_slope 12 -> 20  9209 9222 93cc  sent".
std::string writes_as_text(const WriteRecords& records);
/// A line each below a line of names. A text with a comma, a quotation mark or a line end stands between
/// quotation marks.
std::string writes_as_csv(const WriteRecords& records);
/// A JSON object on a line each.
std::string writes_as_json_lines(const WriteRecords& records);
/// What read_replay_script() reads: the flushes that left, and the pauses between them. What is no register
/// write, and what only asks, is a remark.
std::string writes_as_script(const WriteRecords& records);

}  // namespace qv5123
