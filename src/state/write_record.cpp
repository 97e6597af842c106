#include "state/write_record.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <utility>

#include "base/hex.h"
#include "link/indirect_access.h"
#include "link/late_answers.h"

namespace qv5123 {
namespace {

using Result = WriteRecord::Result;

constexpr std::array kResultWords{"sent", "short", "cancelled", "lost"};
constexpr std::array kResultTexts{"sent", "cut short", "cancelled", "port lost"};
constexpr std::size_t kFrameBytes = 6;
constexpr std::size_t kDigits = 4;

Result result_of(const JobResult& result) {
  if (result.lost) return Result::lost;
  if (result.cancelled) return Result::cancelled;
  return result.failed ? Result::cut_short : Result::sent;
}

std::string escaped(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (c == '\\') {
      line += "\\\\";
    } else if (c == '\t') {
      line += "\\t";
    } else if (c == '\n') {
      line += "\\n";
    } else {
      line += c;
    }
  }
  return line;
}

std::string unescaped(std::string_view line) {
  std::string text;
  text.reserve(line.size());
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] != '\\' || i + 1 == line.size()) {
      text += line[i];
      continue;
    }
    const char c = line[++i];
    text += c == 't' ? '\t' : c == 'n' ? '\n' : c;
  }
  return text;
}

/// Takes what stands before `end` off the beginning of `rest`, or all of it.
std::string_view take(std::string_view& rest, char end) {
  const std::size_t at = rest.find(end);
  const std::string_view taken = rest.substr(0, at);
  rest.remove_prefix(at == std::string_view::npos ? rest.size() : at + 1);
  return taken;
}

template <class T>
bool read_number(std::string_view text, T& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

bool read_value(std::string_view text, WriteRecord::Value& value) {
  const std::size_t equals = text.rfind('=');
  const std::size_t arrow = text.rfind('>');
  if (equals == std::string_view::npos || arrow == std::string_view::npos || arrow < equals) return false;
  value.name = text.substr(0, equals);
  const std::string_view old = text.substr(equals + 1, arrow - equals - 1);
  if (old != "?" && !read_number(old, value.old.emplace())) return false;
  return read_number(text.substr(arrow + 1), value.now);
}

bool read_values(std::string_view text, std::vector<WriteRecord::Value>& values) {
  while (!text.empty()) {
    if (!read_value(take(text, ' '), values.emplace_back())) return false;
  }
  return true;
}

bool read_write(std::string_view text, RegisterWrite& write) {
  if (text.size() != kDigits) return false;
  int number = 0;
  for (const char c : text) {
    const bool digit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
    if (!digit) return false;
    number = number * 16 + hex_value(static_cast<unsigned char>(c));
  }
  write = {high_byte(number), low_byte(number)};
  return true;
}

bool read_flush(std::string_view text, Batch& flush) {
  if (text == "-") return true;
  flush.reserve((text.size() + 1) / (kDigits + 1));
  while (!text.empty()) {
    if (!read_write(take(text, ' '), flush.emplace_back())) return false;
  }
  return true;
}

bool read_flushes(std::string_view text, Traffic& flushes) {
  while (!text.empty()) {
    if (!read_flush(take(text, '|'), flushes.emplace_back())) return false;
  }
  return true;
}

bool read_result(std::string_view text, Result& result) {
  const auto found = std::find(kResultWords.begin(), kResultWords.end(), text);
  result = static_cast<Result>(found - kResultWords.begin());
  return found != kResultWords.end();
}

void add_flush(std::string& text, const Batch& flush) {
  for (std::size_t i = 0; i < flush.size(); ++i) {
    if (i > 0) text += ' ';
    text += lower_hex(flush[i].address) + lower_hex(flush[i].value);
  }
}

std::string number_text(const std::optional<int>& number) {
  return number ? std::to_string(*number) : "?";
}

/// How many bytes the frames of what left have.
std::size_t frame_bytes(const WriteEvent& event) {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < std::min(event.result.chunks_sent, event.batches.size()); ++i)
    bytes += kFrameBytes * event.batches[i].size();
  return bytes;
}

bool has_plain(const Traffic& flushes) {
  return std::any_of(flushes.begin(), flushes.end(), [](const Batch& flush) { return flush.empty(); });
}

}  // namespace

WriteRecord record_of(const WriteEvent& event, std::chrono::system_clock::time_point time) {
  WriteRecord record;
  record.time = std::chrono::floor<std::chrono::milliseconds>(time);
  record.page = event.page;
  record.control = event.control;
  for (const WriteEvent::Value& value : event.values)
    record.values.push_back({value.name, value.old, value.now});
  record.flushes = event.batches;
  record.flushes_left = event.result.chunks_sent;
  const std::size_t frames = frame_bytes(event);
  if (has_plain(event.batches) && event.result.bytes_sent > frames)
    record.plain_bytes = event.result.bytes_sent - frames;
  record.result = result_of(event.result);
  return record;
}

WriteRecord connection_record(std::chrono::system_clock::time_point time) {
  WriteRecord record;
  record.time = std::chrono::floor<std::chrono::milliseconds>(time);
  record.control = "(the port was opened, closed or lost)";
  record.result = Result::lost;
  return record;
}

bool is_connection(const WriteRecord& record) {
  return record.flushes.empty() && record.result == Result::lost;
}

bool is_question(const WriteRecord& record) {
  if (record.flushes.size() != 1 || record.flushes[0].empty()) return false;
  const Batch& flush = record.flushes[0];
  return answer_digits(flush).has_value() || flush.back().address == reg::kDump;
}

std::string result_text(const WriteRecord& record) {
  std::string text = kResultTexts[static_cast<std::size_t>(record.result)];
  if (record.result == Result::sent || is_connection(record)) return text;
  return text + ", " + std::to_string(record.flushes_left) + " of " + std::to_string(record.flushes.size());
}

std::string values_text(const WriteRecord& record) {
  std::string text;
  for (const WriteRecord::Value& value : record.values) {
    if (!text.empty()) text += ", ";
    text += value.name + " " + number_text(value.old) + " -> " + std::to_string(value.now);
  }
  return text;
}

std::string registers_text(const WriteRecord& record) {
  std::string text;
  bool plain_told = false;
  for (const Batch& flush : record.flushes) {
    if (flush.empty() && std::exchange(plain_told, true)) continue;
    if (!text.empty()) text += " | ";
    if (flush.empty()) text += "(" + std::to_string(record.plain_bytes) + " bytes)";
    add_flush(text, flush);
  }
  return text;
}

std::string journal_line(const WriteRecord& record) {
  std::string line = std::to_string(record.time.time_since_epoch().count());
  line += '\t' + escaped(record.page) + '\t' + escaped(record.control) + '\t';
  for (std::size_t i = 0; i < record.values.size(); ++i) {
    const WriteRecord::Value& value = record.values[i];
    if (i > 0) line += ' ';
    line += value.name + '=' + number_text(value.old) + '>' + std::to_string(value.now);
  }
  line += '\t';
  for (std::size_t i = 0; i < record.flushes.size(); ++i) {
    if (i > 0) line += '|';
    if (record.flushes[i].empty()) line += '-';
    add_flush(line, record.flushes[i]);
  }
  line += '\t' + std::string(kResultWords[static_cast<std::size_t>(record.result)]);
  return line + '\t' + std::to_string(record.flushes_left) + '\t' + std::to_string(record.plain_bytes);
}

std::optional<WriteRecord> read_journal_line(std::string_view line) {
  if (std::count(line.begin(), line.end(), '\t') != 7) return std::nullopt;
  WriteRecord record;
  std::int64_t time = 0;
  bool ok = read_number(take(line, '\t'), time);
  record.time = decltype(record.time)(std::chrono::milliseconds(time));
  record.page = unescaped(take(line, '\t'));
  record.control = unescaped(take(line, '\t'));
  ok = ok && read_values(take(line, '\t'), record.values);
  // What is not taken because of `ok` does no harm: the record is dropped then.
  ok = ok && read_flushes(take(line, '\t'), record.flushes);
  ok = ok && read_result(take(line, '\t'), record.result);
  ok = ok && read_number(take(line, '\t'), record.flushes_left) && read_number(line, record.plain_bytes);
  return ok ? std::optional(std::move(record)) : std::nullopt;
}

}  // namespace qv5123
