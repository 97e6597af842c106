#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "link/comm_port.h"
#include "link/scheduler.h"
#include "link/sender.h"

namespace qv5123 {

/// The sending thread over a port: pays the pacing and waits for the line, so that nobody else has to.
class PortSender : public Sender {
 public:
  /// `command_buffer` is the one that the port resets.
  PortSender(CCommPort& port, CommandBuffer& command_buffer, Scheduler& scheduler);
  /// Drops what has not left yet. Close the port first, so that a write in progress returns.
  ~PortSender() override;

  void start(Job job, std::function<void(JobResult)> done) override;
  void cancel() override { cancelled_ = true; }
  /// Runs `work` on the sending thread after what it is doing, for calls on the port that may take long.
  void run(std::function<void()> work);
  /// Nothing more is started from now on; what runs ends at its next chunk.
  void end();

 private:
  void serve();
  JobResult execute(const Job& job);
  bool send_chunk(const Chunk& chunk, JobResult& result);

  CCommPort& port_;
  CommandBuffer& command_buffer_;
  Scheduler& scheduler_;
  std::atomic<bool> cancelled_{false};
  std::atomic<bool> ending_{false};
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> work_;
  std::thread thread_;
};

}  // namespace qv5123
