#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "simulator/faults.h"
#include "simulator/line_pacer.h"
#include "simulator/simulated_chip.h"

namespace qv5123 {

struct LineOptions {
  unsigned line_rate = 0;                ///< baud; 0: as fast as it comes
  std::chrono::milliseconds latency{0};  ///< from what the chip says to when it leaves the board
  FaultRates faults;
  std::uint64_t seed = 1;
};

/// The board as its host sees it: the chip behind a line with a speed and faults. It does nothing by itself
/// and has no clock: whoever runs it puts in what the host wrote, takes out what the host reads, and comes
/// back when next() says so.
class BoardLine {
 public:
  /// How long after a host has opened the line the chip announces itself: a host empties its buffers on
  /// opening, and one that speaks sooner gets answers only.
  static constexpr std::chrono::milliseconds kAnnounceAfter{60};

  BoardLine(SimulatedChip& chip, const LineOptions& options);

  /// How many bytes the line takes at once; what does not fit has to wait with the host.
  std::size_t room() const { return kLineBuffer - to_chip_.size(); }
  void put(std::span<const std::uint8_t> bytes, TimePoint now);
  /// What has reached the host by `now`.
  std::vector<std::uint8_t> take(TimePoint now);
  /// When take() has something to do again, if nothing is put in before.
  std::optional<TimePoint> next(TimePoint now) const;

  /// A host has opened its end.
  void host_opened(TimePoint now);
  /// True once after a fault broke the line.
  bool take_hangup();
  /// The board is plugged in: what was under way is lost, the chip starts.
  void plug_in();

 private:
  static constexpr std::size_t kLineBuffer = 512;

  void pass_to_chip(TimePoint now);
  void pass_silence(TimePoint now);
  void announce_if_due(TimePoint now);
  void pass_output(TimePoint now);

  struct Said {
    TimePoint due;
    std::vector<std::uint8_t> bytes;
  };

  SimulatedChip& chip_;
  std::chrono::milliseconds latency_;
  LinePacer in_pace_;
  LinePacer out_pace_;
  FaultInjector in_faults_;
  FaultInjector out_faults_;
  std::deque<std::uint8_t> to_chip_;
  std::deque<Said> said_;
  std::deque<std::uint8_t> to_host_;
  std::optional<TimePoint> last_byte_;
  std::optional<TimePoint> announce_at_;
  std::size_t frames_at_open_ = 0;
};

}  // namespace qv5123
