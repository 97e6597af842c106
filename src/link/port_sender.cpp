#include "link/port_sender.h"

#include <utility>

namespace qv5123 {

PortSender::PortSender(CCommPort& port, CommandBuffer& command_buffer, Scheduler& scheduler)
    : port_(port), command_buffer_(command_buffer), scheduler_(scheduler), thread_([this] { serve(); }) {}

PortSender::~PortSender() {
  end();
  thread_.join();
}

void PortSender::end() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  wake_.notify_all();
}

void PortSender::start(Job job, std::function<void(JobResult)> done) {
  cancelled_ = false;
  run([this, job = std::move(job), done = std::move(done)] {
    const JobResult result = execute(job);
    scheduler_.post([done, result] { done(result); });
  });
}

void PortSender::run(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
  }
  wake_.notify_all();
}

void PortSender::serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return ending_ || !work_.empty(); });
    if (ending_) return;
    const std::function<void()> work = std::move(work_.front());
    work_.pop_front();
    lock.unlock();
    work();
    lock.lock();
  }
}

JobResult PortSender::execute(const Job& job) {
  JobResult result;
  for (const Chunk& chunk : job.chunks) {
    if (cancelled_ || ending_) {
      result.cancelled = true;
      break;
    }
    if (!send_chunk(chunk, result)) {
      result.failed = true;
      break;
    }
    ++result.chunks_sent;
    if (job.on_progress) {
      scheduler_.post([report = job.on_progress, sent = result.chunks_sent] { report(sent); });
    }
  }
  return result;
}

bool PortSender::send_chunk(const Chunk& chunk, JobResult& result) {
  if (chunk.pause_before.count() > 0) port_.pause(chunk.pause_before);
  std::span<const std::uint8_t> bytes = chunk.bytes;
  if (!chunk.writes.empty()) {
    for (const RegisterWrite& write : chunk.writes) {
      command_buffer_.append_register_write(write.address, write.value);
    }
    bytes = command_buffer_.bytes();
  }
  const std::size_t wanted = bytes.size();
  const std::size_t sent = port_.write(bytes, chunk.pacing);
  result.bytes_sent += sent;
  return sent == wanted;
}

}  // namespace qv5123
