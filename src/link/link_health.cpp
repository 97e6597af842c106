#include "link/link_health.h"

#include <algorithm>
#include <cmath>

namespace qv5123 {
namespace {

/// Start and stop bits, and one for the parity; a long stop bit hardly counts.
double bits_of_a_byte(const LineSettings& line) {
  return 2.0 + line.data_bits + (line.parity != 0 ? 1 : 0);
}

constexpr std::size_t kFrameBytes = 6;
/// "~" and "^".
constexpr std::size_t kBlockEnds = 2;

}  // namespace

void LinkHealth::Samples::add(Time time) {
  times_[next_] = time;
  next_ = (next_ + 1) % kKept;
  size_ = std::min(size_ + 1, kKept);
}

std::optional<LinkHealth::Time> LinkHealth::Samples::median() const {
  if (size_ == 0) return std::nullopt;
  std::array<Time, kKept> times = times_;
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(size_ / 2);
  std::nth_element(times.begin(), middle, times.begin() + static_cast<std::ptrdiff_t>(size_));
  return *middle;
}

LinkHealth::LinkHealth(const LineSettings& line)
    : byte_time_(1000.0 * bits_of_a_byte(line) / std::max(line.baud_rate, 1U)) {}

LinkHealth::Time LinkHealth::on_the_line(std::size_t bytes) const {
  return Time(std::lround(byte_time_ * static_cast<double>(bytes)));
}

LinkHealth::Time LinkHealth::line_time(const Batch& request, std::size_t digits) const {
  return on_the_line(kFrameBytes * request.size() + digits + kBlockEnds);
}

std::chrono::duration<double> LinkHealth::frame_time() const {
  return std::chrono::duration<double, std::milli>(byte_time_ * kFrameBytes);
}

void LinkHealth::left(std::size_t frames, std::size_t bytes) {
  counts_.frames_sent += frames;
  counts_.bytes_sent += bytes;
}

void LinkHealth::came(std::size_t bytes, std::uint64_t replies) {
  counts_.bytes_received += bytes;
  counts_.replies_received += replies;
}

void LinkHealth::asked(bool again, const Batch& request) {
  ++counts_.requests;
  if (again) ++counts_.retries;
  asked_bytes_ = kFrameBytes * request.size();
}

void LinkHealth::answered(LateAnswers::Answer answer, std::size_t digits, bool damaged) {
  using Kind = LateAnswers::Kind;
  if (answer.kind == Kind::unasked) return;
  if (answer.kind == Kind::late) ++counts_.late;
  if (answer.kind == Kind::another || damaged) ++counts_.refused;
  if (answer.kind != Kind::own || damaged) return;
  round_trips_.add(answer.took);
  worst_ = std::max(answer.took, worst_.value_or(answer.took));
  const Time latency = std::max(Time(0), answer.took - on_the_line(asked_bytes_ + digits + kBlockEnds));
  latencies_.add(latency);
  if (digits <= kLongestShortReply) idle_.add(latency);
}

std::optional<LinkHealth::Time> LinkHealth::idle() const {
  return idle_.size() < kFewest ? std::nullopt : idle_.median();
}

}  // namespace qv5123
