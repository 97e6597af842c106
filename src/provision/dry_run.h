#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/background.h"
#include "provision/board_port.h"
#include "simulator/board_line.h"
#include "simulator/simulated_chip.h"

namespace qv5123 {

/// A simulated board on a simulated line, both on the scheduler's own time: what is sent takes as long as at
/// `line.line_rate`, pacing included, whatever the time of the scheduler is. Its fixture shows each step what
/// it measures: a flat surface, or the chart.
class SimulatedPort final : public BoardPort, private Sender {
 public:
  SimulatedPort(Scheduler& scheduler, std::string name, const LineOptions& line);
  ~SimulatedPort() override;

  const std::string& name() const override { return name_; }
  CommandLink& link() override { return link_; }
  bool connected() const override { return connected_; }
  std::uint32_t baud_rate() const override { return rate_; }
  Task<OpenResult> open() override;
  void close() override;
  void prepare(const Step& step) override;

  SimulatedChip& chip() { return chip_; }
  /// Takes the board away; plug_in() puts it back with the chip powered on anew.
  void unplug();
  void plug_in();

 private:
  struct Sending;

  TimePoint now() const { return TimePoint(scheduler_.now()); }
  void start(Job job, std::function<void(JobResult)> done) override;
  void cancel() override { cancelled_ = true; }
  void later(std::chrono::milliseconds time, std::function<void()> callback);
  void send_next(const std::shared_ptr<Sending>& sending);
  void send_chunk(const std::shared_ptr<Sending>& sending);
  void pump();

  Scheduler& scheduler_;
  const std::string name_;
  const unsigned rate_;
  SimulatedChip chip_;
  BoardLine line_;
  CommandLink link_;
  bool connected_ = false;
  bool there_ = true;
  bool cancelled_ = false;
  std::uint64_t received_ = 0;
  std::optional<Scheduler::TimerId> look_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

/// Does the work at once, on the spot.
class InlineWork final : public Background {
 public:
  explicit InlineWork(Scheduler& scheduler) : scheduler_(scheduler) {}

 private:
  void start(std::function<Finish()> work) override { scheduler_.post(work()); }
  Scheduler& scheduler_;
};

}  // namespace qv5123
