#include "provision/metrics.h"

#include <fstream>

#include "base/text.h"

namespace qv5123 {
namespace {

/// A label's value as the format has it.
std::string label(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\\' || c == '"') quoted += '\\';
    quoted += c == '\n' ? ' ' : c;
  }
  return quoted + "\"";
}

std::string head(const std::string& name, const std::string& help) {
  return "# HELP " + name + " " + help + "\n# TYPE " + name + " counter\n";
}

RecordedStep recorded_step(const RecordJson& json) {
  return {json.value("step", std::string()), json.value("seconds", 0.0),
          json.value("result", std::string()) == "pass"};
}

}  // namespace

std::optional<RecordedUnit> recorded_unit(std::string_view line) {
  const RecordJson json = RecordJson::parse(line, nullptr, false);
  if (!json.is_object() || !json.contains("unit") || !json.contains("verdict")) return std::nullopt;
  try {
    RecordedUnit unit;
    unit.unit = json.at("unit").get<std::string>();
    unit.serial = json.value("serial", std::string());
    unit.verdict = json.at("verdict").get<std::string>();
    unit.failed_step = json.value("failed_step", std::string());
    unit.seconds = json.value("seconds", 0.0);
    unit.retries = json.value("retries", 0);
    unit.rehearsed = json.value("dry_run", false);
    for (const RecordJson& step : json.value("steps", RecordJson::array()))
      unit.steps.push_back(recorded_step(step));
    return unit;
  } catch (const RecordJson::exception&) {
    return std::nullopt;
  }
}

RecordedUnit recorded_unit(const UnitRecord& record) {
  const auto seconds = [](std::chrono::milliseconds time) {
    return static_cast<double>(time.count()) / 1000;
  };
  RecordedUnit unit;
  unit.unit = record.unit;
  unit.serial = record.serial;
  unit.verdict = record.verdict;
  unit.failed_step = record.failed_step();
  unit.seconds = seconds(record.time);
  unit.retries = record.retries();
  unit.rehearsed = record.rehearsed;
  for (const StepRecord& step : record.steps)
    unit.steps.push_back({step.name, seconds(step.time), step.passed});
  return unit;
}

std::size_t for_each_record(const std::filesystem::path& path,
                            const std::function<void(const RecordedUnit&)>& take) {
  std::ifstream file(path, std::ios::binary);
  std::size_t others = 0;
  std::string line;
  while (std::getline(file, line)) {
    if (const auto unit = recorded_unit(line))
      take(*unit);
    else if (!file.eof())
      ++others;
  }
  return others;
}

void Metrics::take_records(const std::filesystem::path& records) {
  for_each_record(records, [this](const RecordedUnit& unit) { take(unit); });
}

void Metrics::take(const RecordedUnit& unit) {
  if (unit.rehearsed) return;
  ++units_[unit.verdict];
  if (!unit.failed_step.empty()) ++steps_[unit.failed_step].failures;
  for (const RecordedStep& step : unit.steps) {
    ++steps_[step.name].units;
    steps_[step.name].seconds += step.seconds;
  }
}

std::string Metrics::text() const {
  std::string text = head("qv5123_units_total", "Units by verdict.");
  for (const auto& [verdict, count] : units_)
    text += "qv5123_units_total{verdict=" + label(verdict) + "} " + std::to_string(count) + "\n";
  text += head("qv5123_step_failures_total", "Units that ended with this step.");
  for (const auto& [name, step] : steps_)
    text += "qv5123_step_failures_total{step=" + label(name) + "} " + std::to_string(step.failures) + "\n";
  text += head("qv5123_step_seconds_total", "Seconds that the step took, all units together.");
  for (const auto& [name, step] : steps_)
    text += "qv5123_step_seconds_total{step=" + label(name) + "} " + fixed(step.seconds, 3) + "\n";
  text += head("qv5123_steps_total", "Units that came to this step.");
  for (const auto& [name, step] : steps_)
    text += "qv5123_steps_total{step=" + label(name) + "} " + std::to_string(step.units) + "\n";
  return text;
}

}  // namespace qv5123
