#pragma once

#include <functional>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "link/command_link.h"
#include "link/sender.h"
#include "support/manual_scheduler.h"

namespace qv5123::test {

/// A Sender on the hand-moved clock: pays the pacing there, records every write, and hands the bytes to
/// `chip`, if one is set.
class FakeSender : public Sender {
 public:
  explicit FakeSender(ManualScheduler& scheduler) : scheduler_(scheduler) {}

  void start(Job job, std::function<void(JobResult)> done) override {
    cancelled_ = false;
    step(std::make_shared<Job>(std::move(job)), 0, {}, std::move(done));
  }
  void cancel() override { cancelled_ = true; }

  /// Every write as the bytes that left in it, in order.
  std::vector<std::string> writes;
  /// The same without the boundaries.
  std::string wire() const {
    std::string all;
    for (const std::string& write : writes) all += write;
    return all;
  }
  std::function<void(const std::string&)> chip;
  /// While false every write comes up short, as on a lost port.
  bool connected = true;
  /// While true only the first half of every write leaves, as on a line that stands still.
  bool cuts_short = false;

 private:
  void step(std::shared_ptr<Job> job, std::size_t at, JobResult result, std::function<void(JobResult)> done) {
    if (at == job->chunks.size() || cancelled_) {
      result.cancelled = at != job->chunks.size();
      scheduler_.post([done, result] { done(result); });
      return;
    }
    const Chunk& chunk = job->chunks[at];
    const auto pacing = std::chrono::milliseconds(chunk.pacing == Pacing::bulk ? 1 : 50) + chunk.pause_before;
    scheduler_.call_after(pacing, [this, job, at, result, done]() mutable {
      if (!connected) {
        result.failed = result.lost = true;
        done(result);
        return;
      }
      if (job->on_write) job->on_write(std::numeric_limits<std::uint64_t>::max());
      const Chunk& chunk = job->chunks[at];
      std::string bytes =
          chunk.writes.empty() ? std::string(chunk.bytes.begin(), chunk.bytes.end()) : frames(chunk.writes);
      if (cuts_short) {
        bytes.resize(bytes.size() / 2);
        result.failed = true;
      }
      writes.push_back(bytes);
      result.bytes_sent += bytes.size();
      if (cuts_short && chunk.writes.empty()) return done(result);  // an image ends there
      result.chunks_sent = at + 1;
      if (chip) chip(bytes);
      if (job->on_progress) job->on_progress(result.chunks_sent);
      step(job, at + 1, result, done);
    });
  }

  ManualScheduler& scheduler_;
  bool cancelled_ = false;
};

/// A command link on the hand-moved clock. Tests set `sender.chip` or call receive() to play the chip.
struct FakeWire {
  ManualScheduler scheduler;
  FakeSender sender{scheduler};
  CommandLink link{scheduler, sender};
  std::string console;

  /// Bytes from the chip.
  void receive(const std::string& bytes) {
    console += link.receive({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  }
  void advance(int milliseconds) { scheduler.advance(std::chrono::milliseconds(milliseconds)); }
};

}  // namespace qv5123::test
