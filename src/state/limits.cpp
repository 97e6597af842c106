#include "state/limits.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "base/text.h"

namespace qv5123 {
namespace {

constexpr std::size_t kMostShown = 60;

/// Nothing for what is no number; `given` tells whether there was any.
std::optional<double> number_of(std::string_view text) {
  text = trimmed(text);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::string plain(std::string_view name) {
  std::string text = lower_case(std::string(trimmed(name)));
  for (std::size_t at = 0; (at = text.find("colour", at)) != std::string::npos;) text.erase(at + 4, 1);
  return text;
}

/// "name <= 2" or "name >= 2".
std::optional<Limit> compared(std::string_view line) {
  const std::size_t sign = line.find_first_of("<>");
  if (sign == std::string_view::npos || line.substr(sign + 1, 1) != "=") return std::nullopt;
  const std::optional<double> bound = number_of(line.substr(sign + 2));
  if (!bound) return std::nullopt;
  Limit limit;
  limit.name = trimmed(line.substr(0, sign));
  (line[sign] == '<' ? limit.high : limit.low) = bound;
  return limit;
}

/// "name, low, high".
std::optional<Limit> listed(std::string_view line) {
  const std::size_t last = line.rfind(',');
  if (last == std::string_view::npos || last == 0) return std::nullopt;
  const std::size_t middle = line.rfind(',', last - 1);
  if (middle == std::string_view::npos) return std::nullopt;
  const std::string_view low = trimmed(line.substr(middle + 1, last - middle - 1));
  const std::string_view high = trimmed(line.substr(last + 1));
  Limit limit;
  limit.name = trimmed(line.substr(0, middle));
  limit.low = number_of(low);
  limit.high = number_of(high);
  const bool numbers = (low.empty() || limit.low) && (high.empty() || limit.high);
  if (!numbers || (!limit.low && !limit.high)) return std::nullopt;
  return limit;
}

bool holds(const Limit& limit, double value) {
  return std::isfinite(value) && !(limit.low && value < *limit.low) && !(limit.high && value > *limit.high);
}

}  // namespace

std::string figure_text(double value, int digits) {
  return fixed(value, value == std::trunc(value) ? 0 : digits);
}

Limits read_limits(std::string_view text) {
  Limits found;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    line = trimmed(line.substr(0, line.find('#')));
    if (line.empty()) continue;
    std::optional<Limit> limit = listed(line);
    if (!limit) limit = compared(line);
    if (limit && !limit->name.empty()) {
      limit->line = number;
      found.limits.push_back(std::move(*limit));
    } else {
      found.faults.push_back("Line " + std::to_string(number) + " is no limit: \"" +
                             elided(line, kMostShown) + "\"");
    }
  }
  return found;
}

std::vector<JudgedLimit> judged(const std::vector<Limit>& limits, const Figures& figures) {
  Figures by_plain_name;
  for (const auto& [name, value] : figures) by_plain_name[plain(name)] = value;
  std::vector<JudgedLimit> all;
  for (const Limit& limit : limits) {
    JudgedLimit one{limit, {}, false};
    if (const auto found = by_plain_name.find(plain(limit.name)); found != by_plain_name.end()) {
      one.value = found->second;
      one.met = holds(limit, *one.value);
    }
    all.push_back(std::move(one));
  }
  return all;
}

}  // namespace qv5123
