#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "link/late_answers.h"
#include "link/serial_device.h"

namespace qv5123 {

/// How often what happened on a line.
struct LinkCounts {
  std::uint64_t bytes_sent = 0;
  std::uint64_t frames_sent = 0;  ///< register writes
  std::uint64_t bytes_received = 0;
  std::uint64_t replies_received = 0;  ///< whole reply blocks, whoever asked for them
  std::uint64_t requests = 0;
  std::uint64_t retries = 0;     ///< of them, those for what was still owed
  std::uint64_t unanswered = 0;  ///< requests whose answer was given up
  std::uint64_t refused = 0;     ///< replies that were damaged or another request's
  std::uint64_t late = 0;        ///< replies that came after that, or after a retry
  std::uint64_t reconnects = 0;
  friend bool operator==(const LinkCounts&, const LinkCounts&) = default;
};

/// Counts what happens on a line and measures its round trips, from when a request leaves to when its reply
/// is complete. Belongs to the scheduler's thread, as the command link does.
class LinkHealth {
 public:
  using Time = std::chrono::milliseconds;
  /// How many round trips the medians are of.
  static constexpr std::size_t kKept = 256;
  /// An adapter hands on more than this at once, whatever its timer says.
  static constexpr std::size_t kLongestShortReply = 32;
  /// So few short replies say nothing of an adapter.
  static constexpr std::size_t kFewest = 8;

  explicit LinkHealth(const LineSettings& line = {});

  void left(std::size_t frames, std::size_t bytes);
  void came(std::size_t bytes, std::uint64_t replies);
  void asked(bool again, const Batch& request);
  void answered(LateAnswers::Answer answer, std::size_t digits, bool damaged);
  void gave_up() { ++counts_.unanswered; }
  void reconnected() { ++counts_.reconnects; }

  const LinkCounts& counts() const { return counts_; }
  /// Of the last kKept; nothing before the first.
  std::optional<Time> median() const { return round_trips_.median(); }
  /// Of all.
  std::optional<Time> worst() const { return worst_; }
  /// The median of what the last kKept replies took beyond the time of their bits on the line, and those of
  /// their requests: what a chip and its adapters need to answer. Nothing before the first.
  std::optional<Time> latency() const { return latencies_.median(); }
  /// What a request and an answer of so many digits take on the line.
  Time line_time(const Batch& request, std::size_t digits) const;
  /// What a register write's frame takes on the line.
  std::chrono::duration<double> frame_time() const;
  /// The median of what short replies take beyond the time of their bits on the line; nothing while there are
  /// fewer than kFewest.
  std::optional<Time> idle() const;

 private:
  /// The last kKept of some times.
  class Samples {
   public:
    void add(Time time);
    std::size_t size() const { return size_; }
    std::optional<Time> median() const;

   private:
    std::array<Time, kKept> times_{};
    std::size_t size_ = 0;
    std::size_t next_ = 0;
  };
  Time on_the_line(std::size_t bytes) const;

  double byte_time_ = 0;  ///< ms
  LinkCounts counts_;
  std::size_t asked_bytes_ = 0;
  Samples round_trips_;
  Samples latencies_;
  Samples idle_;
  std::optional<Time> worst_;
};

}  // namespace qv5123
