#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "provision/unit_record.h"

namespace qv5123 {

/// What a record's line says, as far as figures need it.
struct RecordedStep {
  std::string name;
  double seconds = 0;
  bool passed = false;
};
struct RecordedUnit {
  std::string unit;
  std::string serial;
  std::string verdict;
  std::string failed_step;
  double seconds = 0;
  int retries = 0;
  bool rehearsed = false;
  std::vector<RecordedStep> steps;
};
/// Nothing for a line that is no record.
std::optional<RecordedUnit> recorded_unit(std::string_view line);
RecordedUnit recorded_unit(const UnitRecord& record);

/// Calls `take` for each record of the file, also one that lacks its line end. How many lines were none; what
/// the last writer that died left behind the last line end does not count.
std::size_t for_each_record(const std::filesystem::path& path,
                            const std::function<void(const RecordedUnit&)>& take);

/// Units, failures by step and seconds by step, as a collector takes them. They count on from what the
/// records already hold. Rehearsals do not count.
class Metrics {
 public:
  void take_records(const std::filesystem::path& records);
  void take(const UnitRecord& record) { take(recorded_unit(record)); }
  void take(const RecordedUnit& unit);
  /// Prometheus text format.
  std::string text() const;

 private:
  struct StepFigures {
    int units = 0;
    int failures = 0;
    double seconds = 0;
  };
  std::map<std::string, int> units_;  ///< by verdict
  std::map<std::string, StepFigures> steps_;
};

/// What `records summary` says.
struct RecordSummary {
  std::size_t units = 0;       ///< told apart by serial number where they have one
  std::size_t passed = 0;      ///< whose last record says so
  std::size_t first_pass = 0;  ///< whose first record says so, nothing having been tried again
  std::size_t records = 0;
  std::size_t not_records = 0;                 ///< lines
  std::map<std::string, int> failures;         ///< records by step
  std::map<std::string, double> mean_seconds;  ///< by step
  std::string slowest;                         ///< step

  static RecordSummary of(const std::filesystem::path& path);
  std::string text() const;
  std::string csv() const;
  RecordJson json() const;
};

}  // namespace qv5123
