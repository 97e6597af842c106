#include "simulator/faults.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace qv5123 {
namespace {

constexpr std::chrono::milliseconds kShortestDelay{10};
constexpr std::uint64_t kDelaySpan = 390;  // ms on top of the shortest

struct Kind {
  std::string_view name;
  double FaultRates::*rate;
};
constexpr Kind kKinds[] = {{"drop", &FaultRates::drop},
                           {"corrupt", &FaultRates::corrupt},
                           {"duplicate", &FaultRates::duplicate},
                           {"delay", &FaultRates::delay},
                           {"hangup", &FaultRates::hangup}};

std::string kind_names() {
  std::string names;
  for (const Kind& kind : kKinds) names += (names.empty() ? "" : ", ") + std::string(kind.name);
  return names;
}

std::optional<double> parse_rate(std::string_view text) {
  double rate = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rate);
  const bool whole = error == std::errc{} && end == text.data() + text.size();
  // Written so that NaN fails.
  if (!whole || !(rate >= 0 && rate <= 1)) return std::nullopt;
  return rate;
}

}  // namespace

std::string parse_fault(std::string_view text, FaultRates& rates) {
  const std::string quoted = "\"" + std::string(text) + "\"";
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return quoted + " is not of the form KIND=RATE";
  const std::string_view name = text.substr(0, equals);
  const auto* kind =
      std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& k) { return k.name == name; });
  if (kind == std::end(kKinds)) return quoted + " names no fault; the kinds are " + kind_names();
  const auto rate = parse_rate(text.substr(equals + 1));
  if (!rate) return quoted + " needs a rate from 0 to 1";
  rates.*(kind->rate) = *rate;
  return {};
}

void FaultInjector::put(std::span<const std::uint8_t> bytes, TimePoint now) {
  for (const std::uint8_t byte : bytes) put_byte(byte, now);
}

void FaultInjector::put_byte(std::uint8_t byte, TimePoint now) {
  if (happens(rates_.hangup)) {
    clear();
    hung_up_ = true;
  }
  if (hung_up_ || happens(rates_.drop)) return;
  if (happens(rates_.corrupt)) byte = static_cast<std::uint8_t>(byte ^ (1u << (random_() % 8)));
  TimePoint due = now;
  if (happens(rates_.delay)) due += kShortestDelay + std::chrono::milliseconds(random_() % (kDelaySpan + 1));
  // Bytes do not overtake each other.
  last_due_ = std::max(last_due_, due);
  under_way_.push_back({byte, last_due_});
  if (happens(rates_.duplicate)) under_way_.push_back({byte, last_due_});
}

std::vector<std::uint8_t> FaultInjector::take(TimePoint now) {
  std::vector<std::uint8_t> arrived;
  while (!under_way_.empty() && under_way_.front().due <= now) {
    arrived.push_back(under_way_.front().value);
    under_way_.pop_front();
  }
  return arrived;
}

std::optional<TimePoint> FaultInjector::next() const {
  if (under_way_.empty()) return std::nullopt;
  return under_way_.front().due;
}

bool FaultInjector::take_hangup() {
  return std::exchange(hung_up_, false);
}

void FaultInjector::clear() {
  under_way_.clear();
  last_due_ = {};
}

/// Draws only for faults that can happen, so that one kind's rate does not move where another strikes.
bool FaultInjector::happens(double rate) {
  return rate > 0 && static_cast<double>(random_() >> 11) * 0x1p-53 < rate;
}

}  // namespace qv5123
