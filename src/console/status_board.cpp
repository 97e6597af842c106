#include "console/status_board.h"

#include <set>
#include <utility>

#include "link/indirect_access.h"

namespace qv5123 {

void StatusBoard::show(StatusRank rank, std::string kind, std::string text) {
  StatusMessage message{rank, std::move(kind), std::move(text), clock_()};
  if (!message.text.empty() && rank != StatusRank::progress) keep(message);
  const auto same_kind = [&message](const StatusMessage& other) { return other.kind == message.kind; };
  if (rank == StatusRank::failure || (rank == StatusRank::outcome && !message.text.empty())) {
    std::erase_if(failures_, same_kind);
  }
  if (rank != StatusRank::failure) {
    latest_ = std::move(message);
    return;
  }
  // "Saving..." is over, and "Load File ok" is no longer the last word.
  if (same_kind(latest_) && latest_.rank != StatusRank::text) latest_ = StatusMessage();
  failures_.push_back(std::move(message));
}

void StatusBoard::remember(StatusRank rank, std::string kind, std::string text) {
  keep({rank, std::move(kind), std::move(text), clock_()});
}

void StatusBoard::keep(const StatusMessage& message) {
  if (!history_.empty()) {
    StatusMessage& last = history_.back();
    if (last.rank == message.rank && last.kind == message.kind && last.text == message.text) {
      ++last.times;
      last.time = message.time;
      return;
    }
  }
  history_.push_back(message);
  if (history_.size() <= kHistory) return;
  history_.pop_front();
  ++forgotten_;
}

std::string sent_text(const std::string& what, const Traffic& sent) {
  std::set<std::uint8_t> direct;
  std::size_t address_bytes = 0;  // two for each register behind another one
  Batch all;
  for (const Batch& flush : sent) all.insert(all.end(), flush.begin(), flush.end());
  for (const RegisterWrite& write : all) {
    switch (write.address) {
      case reg::kIspWriteAddress:
      case reg::kIspWideWriteAddress:
      case reg::kSensorWriteAddress:
        ++address_bytes;
        break;
      case reg::kIspWriteData:
      case reg::kIspWideWriteData:
      case reg::kSensorWriteData:
        break;
      default:
        direct.insert(write.address);
    }
  }
  const std::size_t registers = direct.size() + address_bytes / 2;
  return what + ": " + std::to_string(registers) + (registers == 1 ? " register" : " registers") + " sent";
}

bool left_whole(const JobResult& result) {
  return !result.failed && !result.cancelled && result.chunks_sent > 0;
}

std::string not_sent_text(const std::string& what, const JobResult& result) {
  if (result.bytes_sent > 0) return what + ": not all of it reached the chip";
  return what + ": not sent" + (result.lost ? ", the port is not open" : "");
}

}  // namespace qv5123
