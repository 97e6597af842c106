#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace qv5123 {

/// A pseudo-terminal that plays a serial line: its far end in this object's hands, its near end under a
/// symbolic link that stays the same when the cable is pulled and plugged in again.
class PtyLine {
 public:
  explicit PtyLine(std::string link);
  ~PtyLine();

  std::string received(std::size_t count);
  void send(std::string_view bytes);
  /// From now on what arrives goes to the other line, which must outlive this one's reading.
  void pass_on_to(PtyLine& other);
  /// Closes the test's own hand on the near end: a program that looks who has the port open would find it in
  /// use.
  void leave_to_others();
  void stall();
  /// Whether a line that stands still takes nothing more: what the system keeps of it is full.
  bool full() const;
  void hang_up();
  void plug_in();
  std::uint32_t baud_rate() const;

 private:
  void start_reading();
  void stop_reading();
  void read_far_end();
  void take(std::string_view bytes);

  const std::string link_;
  int far_end_ = -1;
  int near_end_ = -1;  ///< kept open while no program has to find the port free
  int stop_ = -1;
  std::thread reader_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::string received_;
  PtyLine* other_ = nullptr;
};

}  // namespace qv5123
