#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "base/scheduler.h"
#include "base/worker_thread.h"
#include "link/comm_port.h"
#include "link/sender.h"
#include "link/standstill.h"

namespace qv5123 {

/// The sending thread over a port: pays the pacing and waits for the line, so that nobody else has to.
class PortSender : public Sender {
 public:
  /// `command_buffer` is the one that the port resets. Before this ends the port must be closed, so that a
  /// write in progress returns; what has not left yet is dropped. `on_standstill` is called on the
  /// scheduler's thread: with true when no byte has left for Standstill::kSaidAfter, with false when they
  /// leave again.
  PortSender(CCommPort& port, CommandBuffer& command_buffer, Scheduler& scheduler,
             std::function<void(bool)> on_standstill = {})
      : port_(port),
        command_buffer_(command_buffer),
        scheduler_(scheduler),
        on_standstill_(std::move(on_standstill)) {}

  void start(Job job, std::function<void(JobResult)> done) override;
  /// Ends a write that stands still, too.
  void cancel() override { cancelled_ = true; }
  /// Nothing more is started from now on; what runs ends at its next chunk.
  void end() { thread_.end(); }

 private:
  JobResult execute(const Job& job);
  /// False when not all of the chunk left, nothing of it where the port was closed since the job began.
  bool send_chunk(const Job& job, const Chunk& chunk, unsigned times_closed, JobResult& result);

  CCommPort::Follower follower_of(const Job& job);
  bool goes_on(std::size_t sent);

  CCommPort& port_;
  CommandBuffer& command_buffer_;
  Scheduler& scheduler_;
  const std::function<void(bool)> on_standstill_;
  Standstill standstill_;
  std::atomic<bool> cancelled_{false};
  WorkerThread thread_;
};

}  // namespace qv5123
