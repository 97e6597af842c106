#include "provision/unit_record.h"

namespace qv5123 {
namespace {

double seconds(std::chrono::milliseconds time) {
  return static_cast<double>(time.count()) / 1000;
}

RecordJson json_of(const StepRecord& step) {
  RecordJson json{{"step", step.name},
                  {"result", step.passed ? "pass" : "fail"},
                  {"seconds", seconds(step.time)},
                  {"retries", step.retries}};
  if (!step.values.empty()) json["values"] = step.values;
  return json;
}

}  // namespace

std::string UnitRecord::failed_step() const {
  return passed() || steps.empty() || steps.back().passed ? std::string() : steps.back().name;
}

int UnitRecord::retries() const {
  int sum = 0;
  for (const StepRecord& step : steps) sum += step.retries;
  return sum;
}

std::string record_line(const UnitRecord& record, const Recipe& recipe) {
  RecordJson steps = RecordJson::array();
  for (const StepRecord& step : record.steps) steps.push_back(json_of(step));
  RecordJson json{
      {"unit", record.unit},       {"serial", record.serial},         {"port", record.port},
      {"started", record.started}, {"seconds", seconds(record.time)}, {"verdict", record.verdict}};
  if (!record.why.empty()) json["why"] = record.why;
  if (!record.failed_step().empty()) json["failed_step"] = record.failed_step();
  json["retries"] = record.retries();
  if (record.rehearsed) json["dry_run"] = true;
  json["steps"] = steps;
  json["recipe"] = recipe.name;
  json["recipe_sha256"] = recipe.sha256;
  json["files"] = RecordJson(recipe.files);
  json["program"] = QV5123_VERSION;
  // What a chip says may be any bytes.
  return json.dump(-1, ' ', false, RecordJson::error_handler_t::replace);
}

}  // namespace qv5123
