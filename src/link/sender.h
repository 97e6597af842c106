#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "link/register_write.h"
#include "link/write_note.h"

namespace qv5123 {

/// What the port waits before a write of commands.
inline constexpr std::chrono::milliseconds kNormalPacing{50};

/// The delay that the port pays before each write.
enum class Pacing {
  normal,  ///< kNormalPacing: the program's only pacing between command batches
  bulk,    ///< 1 ms: the data phase of a firmware download
};

/// What leaves in one write: the frames of `writes` if there are any, else `bytes` as they are.
struct Chunk {
  Batch writes;
  std::vector<std::uint8_t> bytes;
  Pacing pacing = Pacing::normal;
  std::chrono::milliseconds pause_before{0};  ///< on top of the pacing
};

/// Writes that nothing may come between.
struct Job {
  std::vector<Chunk> chunks;
  /// What it is about; may be null.
  std::shared_ptr<const WriteNote> note;
  /// Called on the scheduler's thread when the job's turn has come, before its first pacing. May be empty.
  std::function<void()> on_start;
  /// Called on the scheduler's thread for each chunk, its pacing over, before its bytes leave, with how many
  /// bytes had ever come in by then. May be empty.
  std::function<void(std::uint64_t received)> on_write;
  /// Called on the scheduler's thread after each chunk with how many of the chunks have left. May be empty.
  std::function<void(std::size_t chunks_sent)> on_progress;
};

/// The flushes as a job that nothing comes between.
inline Job noted_job(Traffic traffic, std::shared_ptr<const WriteNote> note) {
  Job job;
  for (Batch& batch : traffic) job.chunks.emplace_back().writes = std::move(batch);
  job.note = std::move(note);
  return job;
}

struct JobResult {
  std::size_t chunks_sent = 0;  ///< chunks written; the last ones are missing after a failure or a cancel
  std::size_t bytes_sent = 0;
  bool cancelled = false;  ///< ended early by cancel()
  bool failed = false;     ///< a write came up short
  bool lost = false;       ///< because the port was not open, or not all the time
};

/// Puts one job at a time on the wire.
class Sender {
 public:
  virtual ~Sender() = default;
  /// Starts `job`; `done` is called on the scheduler's thread when it is over. Not while another one runs.
  virtual void start(Job job, std::function<void(JobResult)> done) = 0;
  /// Ends the running job at the next boundary between chunks.
  virtual void cancel() = 0;
};

}  // namespace qv5123
