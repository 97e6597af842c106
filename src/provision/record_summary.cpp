#include <algorithm>

#include "base/text.h"
#include "provision/metrics.h"

namespace qv5123 {
namespace {

/// What is remembered of a unit while its records are read.
struct Seen {
  bool first_pass = false;
  bool passed = false;
};

struct StepTime {
  double seconds = 0;
  int count = 0;
};

std::string share_text(std::size_t part, std::size_t of) {
  return of == 0 ? "-" : fixed(static_cast<double>(part) * 100 / static_cast<double>(of), 1) + " %";
}

}  // namespace

RecordSummary RecordSummary::of(const std::filesystem::path& path) {
  RecordSummary summary;
  std::map<std::string, Seen> units;
  std::map<std::string, StepTime> steps;
  std::set<std::string> recorded;
  summary.not_records = for_each_record(path, [&](const RecordedUnit& unit) {
    if (unit.rehearsed || !recorded.insert(unit.unit).second) return;
    const bool passed = unit.verdict == "pass";
    const auto [seen, first] = units.try_emplace(unit.serial.empty() ? unit.unit : "serial " + unit.serial);
    if (first) seen->second.first_pass = passed && unit.retries == 0;
    seen->second.passed = passed;
    if (!passed) ++summary.failures[unit.failed_step.empty() ? "(before the first step)" : unit.failed_step];
    for (const RecordedStep& step : unit.steps) {
      steps[step.name].seconds += step.seconds;
      ++steps[step.name].count;
    }
  });
  summary.records = recorded.size();
  summary.units = units.size();
  for (const auto& [name, seen] : units) {
    summary.passed += seen.passed;
    summary.first_pass += seen.first_pass;
  }
  for (const auto& [name, step] : steps) {
    summary.mean_seconds[name] = step.seconds / step.count;
    if (summary.slowest.empty() || summary.mean_seconds[name] > summary.mean_seconds[summary.slowest])
      summary.slowest = name;
  }
  return summary;
}

std::string RecordSummary::text() const {
  std::string text = "units: " + std::to_string(units) + ", in " + std::to_string(records) + " records\n";
  text += "yield: " + share_text(passed, units) + " (" + std::to_string(passed) + ")\n";
  text += "first-pass yield: " + share_text(first_pass, units) + " (" + std::to_string(first_pass) + ")\n";
  for (const auto& [step, count] : failures)
    text += "failed at " + step + ": " + std::to_string(count) + "\n";
  if (!slowest.empty())
    text += "slowest step: " + slowest + ", " + fixed(mean_seconds.at(slowest), 1) + " s\n";
  return text;
}

std::string RecordSummary::csv() const {
  std::string text = "figure,step,value\nunits,," + std::to_string(units) + "\nrecords,," +
                     std::to_string(records) + "\npassed,," + std::to_string(passed) + "\nfirst_pass,," +
                     std::to_string(first_pass) + "\n";
  for (const auto& [step, count] : failures)
    text += "failures," + csv_field(step) + "," + std::to_string(count) + "\n";
  for (const auto& [step, seconds] : mean_seconds)
    text += "mean_seconds," + csv_field(step) + "," + fixed(seconds, 3) + "\n";
  return text;
}

RecordJson RecordSummary::json() const {
  return {{"units", units},           {"records", records},   {"passed", passed},
          {"first_pass", first_pass}, {"failures", failures}, {"mean_seconds", mean_seconds},
          {"slowest", slowest}};
}

}  // namespace qv5123
