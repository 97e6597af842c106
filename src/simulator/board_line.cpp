#include "simulator/board_line.h"

#include <algorithm>
#include <utility>

namespace qv5123 {
namespace {

/// Takes the first `count` bytes off the queue.
std::vector<std::uint8_t> pop(std::deque<std::uint8_t>& queue, std::size_t count) {
  const auto end = queue.begin() + static_cast<std::ptrdiff_t>(count);
  std::vector<std::uint8_t> bytes(queue.begin(), end);
  queue.erase(queue.begin(), end);
  return bytes;
}

void earlier(std::optional<TimePoint>& time, std::optional<TimePoint> other) {
  if (other && (!time || *other < *time)) time = other;
}

}  // namespace

BoardLine::BoardLine(SimulatedChip& chip, const LineOptions& options)
    : chip_(chip),
      latency_(options.latency),
      in_pace_(options.line_rate),
      out_pace_(options.line_rate),
      in_faults_(options.faults, options.seed),
      out_faults_(options.faults, ~options.seed) {}

void BoardLine::put(std::span<const std::uint8_t> bytes, TimePoint now) {
  to_chip_.insert(to_chip_.end(), bytes.begin(), bytes.end());
  pass_to_chip(now);
}

std::vector<std::uint8_t> BoardLine::take(TimePoint now) {
  pass_to_chip(now);
  announce_if_due(now);
  pass_output(now);
  const auto arrived = out_faults_.take(now);
  to_host_.insert(to_host_.end(), arrived.begin(), arrived.end());
  return pop(to_host_, out_pace_.pass(to_host_.size(), now));
}

void BoardLine::pass_output(TimePoint now) {
  if (auto bytes = chip_.take_output(); !bytes.empty()) said_.push_back({now + latency_, std::move(bytes)});
  for (; !said_.empty() && said_.front().due <= now; said_.pop_front()) {
    out_faults_.put(said_.front().bytes, now);
  }
}

void BoardLine::pass_to_chip(TimePoint now) {
  in_faults_.put(pop(to_chip_, in_pace_.pass(to_chip_.size(), now)), now);
  const auto arrived = in_faults_.take(now);
  pass_silence(now);
  if (arrived.empty()) return;
  chip_.receive(arrived);
  last_byte_ = now;
}

void BoardLine::pass_silence(TimePoint now) {
  if (!last_byte_) return;
  // On a slow line the time that bytes take is no silence.
  const auto silence = now - *last_byte_ - 4 * in_pace_.byte_time();
  chip_.line_quiet(std::chrono::duration_cast<std::chrono::milliseconds>(silence));
}

void BoardLine::announce_if_due(TimePoint now) {
  if (!announce_at_ || now < *announce_at_) return;
  announce_at_.reset();
  if (chip_.state().frames == frames_at_open_) chip_.announce();
}

std::optional<TimePoint> BoardLine::next(TimePoint now) const {
  std::optional<TimePoint> time = announce_at_;
  earlier(time, in_pace_.next(to_chip_.size()));
  earlier(time, in_faults_.next());
  earlier(time, out_faults_.next());
  earlier(time, out_pace_.next(to_host_.size()));
  if (!said_.empty()) earlier(time, said_.front().due);
  if (last_byte_ && chip_.transfer_open()) {
    const auto given_up = *last_byte_ + SimulatedChip::kTransferPatience + 4 * in_pace_.byte_time();
    if (given_up > now) earlier(time, given_up);
  }
  return time;
}

void BoardLine::host_opened(TimePoint now) {
  announce_at_ = now + kAnnounceAfter;
  frames_at_open_ = chip_.state().frames;
}

bool BoardLine::take_hangup() {
  const bool in = in_faults_.take_hangup();
  const bool out = out_faults_.take_hangup();
  return in || out;
}

void BoardLine::plug_in() {
  to_chip_.clear();
  said_.clear();
  to_host_.clear();
  in_faults_.clear();
  out_faults_.clear();
  last_byte_.reset();
  announce_at_.reset();
  chip_.power_on();
  chip_.take_output();
}

}  // namespace qv5123
