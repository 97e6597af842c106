#pragma once

#include <array>
#include <optional>
#include <string>

#include "console/page_host.h"
#include "tuning/chart_run.h"
#include "tuning/picker_desk.h"

namespace qv5123 {

/// The page whose chart is measured; it keeps what was read.
class MeasuredChart {
 public:
  /// The cursor goes there, to `patch`.
  virtual void approach(std::size_t patch, PickerPosition place) = 0;
  /// What was read since the run has begun, or stood there before: the order of brightness goes by it.
  virtual const MeasuredColours& readings() const = 0;
  /// The patches as the page has them.
  virtual MeasuredColours patches() const = 0;
  virtual void take_reading(std::size_t patch, const PerColour& colour) = 0;
  /// "Dark skin is 40, 23, 18".
  virtual std::string reading_text(std::size_t patch) const = 0;

 protected:
  ~MeasuredChart() = default;
};

/// A run over the patches of a chart, "Measure all 24" or "Measure 18". Where a reading is doubtful it stops
/// by itself and says why; once that patch is measured anew, it can go on behind it.
class ChartMeasurement {
 public:
  struct Kind {
    std::string name;              ///< of the button
    std::size_t patches;           ///< so many, from the first
    std::array<int, 3> registers;  ///< of red, green and blue
  };
  /// All must outlive it.
  ChartMeasurement(DeskHost& host, PickerDesk& picker, MeasuredChart& chart, Kind kind)
      : host_(host), picker_(picker), chart_(chart), kind_(std::move(kind)) {}

  bool running() const { return running_; }
  /// At the next patch.
  void stop() { stopped_ = true; }
  /// Begins a run; false where the cursor did not arrive, or it was stopped meanwhile. End it all the same.
  Task<bool> begin();
  /// Measures from the patch `first` on.
  Task<> measure(std::array<PickerPosition, kPatches> places, std::size_t first);
  void end();

  /// Whether the last run stopped at `patch` and may go on.
  bool stopped_at(std::size_t patch) const { return stopped_at_ == patch && picker_.on(); }
  /// What is measured from now on is another chart.
  void forget() { stopped_at_.reset(); }
  /// The page's values are others: with other patches than those that the run has left it cannot go on.
  void values_replaced() {
    if (chart_.patches() != left_) forget();
  }
  /// Why the last run has stopped by itself; empty where it has not.
  const std::string& complaint() const { return complaint_; }

 private:
  Task<bool> measure_patch(std::size_t patch, PickerPosition place);
  void stop_at(std::size_t patch);
  std::string zeros_text() const;

  DeskHost& host_;
  PickerDesk& picker_;
  MeasuredChart& chart_;
  const Kind kind_;
  bool running_ = false;
  bool stopped_ = false;
  std::optional<std::size_t> stopped_at_;
  MeasuredColours left_{};  ///< the patches as it stopped there
  std::string complaint_;
};

}  // namespace qv5123
