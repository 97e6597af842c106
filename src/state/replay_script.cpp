#include "state/replay_script.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "base/hex.h"
#include "base/text.h"
#include "link/command_buffer.h"
#include "link/reply_text.h"

namespace qv5123 {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kDigits = 4;

std::optional<milliseconds> read_wait(std::string_view rest) {
  const std::string_view word = take_word(rest);
  int time = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), time);
  const bool whole = error == std::errc() && end == word.data() + word.size();
  if (!whole || time < 0 || time > kLongestReplayWait || !take_word(rest).empty()) return std::nullopt;
  return milliseconds(time);
}

std::optional<Batch> read_flush(std::string_view rest) {
  Batch flush;
  for (std::string_view word = take_word(rest); !word.empty(); word = take_word(rest)) {
    if (word.size() != kDigits || !all_hex_digits(word)) return std::nullopt;
    flush.push_back({reply_byte(word, 0), reply_byte(word, 1)});
  }
  return flush;
}

/// What is wrong with the line; empty when nothing is.
std::string read_line(std::string_view line, std::size_t number, ReplayStep& next,
                      std::vector<ReplayStep>& steps) {
  std::string_view rest = line.substr(0, line.find('#'));
  std::string_view after = rest;
  const std::string_view word = take_word(after);
  if (word.empty()) return {};
  if (word == "wait") {
    const auto wait = read_wait(after);
    if (!wait) return "\"wait\" takes one number of ms up to " + std::to_string(kLongestReplayWait);
    next.wait += *wait;
    return {};
  }
  std::optional<Batch> flush = read_flush(rest);
  if (!flush) return "neither hex pairs such as \"9209 93cc\" nor \"wait MS\"";
  if (frames(*flush).size() > CommandBuffer::kCapacity) return "more registers than one flush takes";
  next.flush = std::move(*flush);
  next.line = number;
  steps.push_back(std::exchange(next, {}));
  return {};
}

}  // namespace

ReplayScript read_replay_script(std::string_view text) {
  ReplayScript script;
  ReplayStep next;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::string fault = read_line(line, number, next, script.steps);
    if (fault.empty()) continue;
    script.fault = "line " + std::to_string(number) + ": " + fault;
    return script;
  }
  if (next.wait.count() > 0) script.steps.push_back(std::move(next));
  return script;
}

std::string replay_line(const Batch& flush) {
  std::string line;
  for (const RegisterWrite& write : flush)
    line += (line.empty() ? "" : " ") + lower_hex(write.address) + lower_hex(write.value);
  return line;
}

}  // namespace qv5123
