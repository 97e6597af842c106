#include "link/port_sender.h"

#include <utility>

namespace qv5123 {

void PortSender::start(Job job, std::function<void(JobResult)> done) {
  cancelled_ = false;
  thread_.run([this, job = std::move(job), done = std::move(done)] {
    const JobResult result = execute(job);
    scheduler_.post([done, result] { done(result); });
  });
}

JobResult PortSender::execute(const Job& job) {
  JobResult result;
  const unsigned times_closed = port_.times_closed();
  for (const Chunk& chunk : job.chunks) {
    if (cancelled_ || thread_.ending()) {
      result.cancelled = true;
      break;
    }
    if (!send_chunk(job, chunk, times_closed, result)) {
      result.failed = true;
      // A write cut short by a line that stands still is no reason to drop the commands behind it. A letter
      // or an image is spoilt by it.
      const bool same_chip = port_.connected() && port_.times_closed() == times_closed;
      if (!same_chip) result.lost = true;
      if (!same_chip || chunk.writes.empty()) break;
    }
    ++result.chunks_sent;
    if (job.on_progress) {
      scheduler_.post([report = job.on_progress, sent = result.chunks_sent] { report(sent); });
    }
  }
  return result;
}

bool PortSender::send_chunk(const Job& job, const Chunk& chunk, unsigned times_closed, JobResult& result) {
  if (chunk.pause_before.count() > 0) port_.pause(chunk.pause_before);
  if (port_.times_closed() != times_closed) return false;
  std::span<const std::uint8_t> bytes = chunk.bytes;
  if (!chunk.writes.empty()) {
    for (const RegisterWrite& write : chunk.writes) {
      if (!command_buffer_.append_register_write(write.address, write.value)) result.failed = true;
    }
    bytes = command_buffer_.bytes();
  }
  standstill_.begin(Standstill::Time::clock::now());
  const std::size_t wanted = bytes.size();
  const std::size_t sent = port_.write(bytes, chunk.pacing, follower_of(job));
  result.bytes_sent += sent;
  if (sent == wanted) goes_on(sent);
  return sent == wanted;
}

CCommPort::Follower PortSender::follower_of(const Job& job) {
  CCommPort::Follower follower;
  if (job.on_write) {
    follower.before_bytes = [this, &job] {
      scheduler_.post([report = job.on_write, received = port_.received()] { report(received); });
    };
  }
  follower.keep_on = [this](std::size_t sent) { return goes_on(sent); };
  return follower;
}

bool PortSender::goes_on(std::size_t sent) {
  const Standstill::Time now = Standstill::Time::clock::now();
  const bool go_on = standstill_.goes_on(sent, now, cancelled_ || thread_.ending());
  const std::optional<bool> news = standstill_.news(now);
  if (news && on_standstill_) scheduler_.post([tell = on_standstill_, stands = *news] { tell(stands); });
  return go_on;
}

}  // namespace qv5123
