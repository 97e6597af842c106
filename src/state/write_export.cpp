#include "state/write_export.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "base/hex.h"
#include "base/text.h"
#include "link/sender.h"
#include "state/json_text.h"
#include "state/replay_script.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

std::string json_number(const std::optional<int>& number) {
  return number ? std::to_string(*number) : "null";
}

std::string json_values(const WriteRecord& record) {
  std::vector<std::string> parts;
  for (const WriteRecord::Value& value : record.values)
    parts.push_back("{\"name\":" + json_text(value.name) + ",\"old\":" + json_number(value.old) +
                    ",\"new\":" + std::to_string(value.now) + "}");
  return "[" + joined(parts, ",") + "]";
}

/// Each flush as an array of [register, value].
std::string json_flushes(const Traffic& flushes) {
  std::vector<std::string> parts;
  for (const Batch& flush : flushes) {
    std::vector<std::string> writes;
    for (const RegisterWrite& write : flush)
      writes.push_back("[" + std::to_string(write.address) + "," + std::to_string(write.value) + "]");
    parts.push_back("[" + joined(writes, ",") + "]");
  }
  return "[" + joined(parts, ",") + "]";
}

std::string json_line(const WriteRecord& record) {
  const std::vector<std::string> parts{"\"time\":" + json_text(iso_time(record.time)),
                                       "\"page\":" + json_text(record.page),
                                       "\"control\":" + json_text(record.control),
                                       "\"values\":" + json_values(record),
                                       "\"flushes\":" + json_flushes(record.flushes),
                                       "\"flushes_left\":" + std::to_string(record.flushes_left),
                                       "\"plain_bytes\":" + std::to_string(record.plain_bytes),
                                       "\"result\":" + json_text(result_text(record))};
  return "{" + joined(parts, ",") + "}\n";
}

/// On one line, whatever its parts hold.
std::string remark(const WriteRecord& record) {
  std::vector<std::string> parts;
  for (const std::string& part : {iso_time(record.time), record.page, record.control, values_text(record)})
    if (!part.empty()) parts.push_back(part);
  std::string text = "# " + joined(parts, "  ");
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
  return text;
}

/// How long nothing was sent before the record.
milliseconds pause_before(const WriteRecord& record, const WriteRecord& last) {
  const auto sending = kNormalPacing * static_cast<int>(record.flushes_left);
  return std::clamp<milliseconds>(record.time - last.time - sending, milliseconds(0), kLongestReplayPause);
}

void add_to_script(std::string& script, const WriteRecord& record) {
  for (std::size_t i = 0; i < std::min(record.flushes_left, record.flushes.size()); ++i) {
    if (!record.flushes[i].empty()) script += replay_line(record.flushes[i]) + "\n";
  }
}

}  // namespace

std::string writes_as_text(const WriteRecords& records) {
  std::string text;
  for (const WriteRecord& record : records) {
    std::vector<std::string> parts;
    for (const std::string& part : {iso_time(record.time), record.page, record.control, values_text(record),
                                    registers_text(record), result_text(record)})
      if (!part.empty()) parts.push_back(part);
    text += joined(parts, "  ") + "\n";
  }
  return text;
}

std::string writes_as_csv(const WriteRecords& records) {
  std::string text = "time,page,control,values,registers,result\n";
  for (const WriteRecord& record : records) {
    text += iso_time(record.time);
    for (const std::string& part :
         {record.page, record.control, values_text(record), registers_text(record), result_text(record)})
      text += "," + csv_field(part);
    text += "\n";
  }
  return text;
}

std::string writes_as_json_lines(const WriteRecords& records) {
  std::string text;
  for (const WriteRecord& record : records) text += json_line(record);
  return text;
}

std::string writes_as_script(const WriteRecords& records) {
  std::string script = "# QV5123 register script, for \"qv5123ctl replay\"\n";
  const WriteRecord* last = nullptr;
  for (const WriteRecord& record : records) {
    if (is_question(record)) continue;
    if (last && pause_before(record, *last).count() > 0)
      script += "wait " + std::to_string(pause_before(record, *last).count()) + "\n";
    last = &record;
    script += remark(record) + "\n";
    if (record.plain_bytes > 0)
      script +=
          "# " + std::to_string(record.plain_bytes) + " bytes that are no register writes are left out\n";
    add_to_script(script, record);
  }
  return script;
}

}  // namespace qv5123
