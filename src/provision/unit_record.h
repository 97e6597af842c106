#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "provision/recipe.h"

namespace qv5123 {

using RecordJson = nlohmann::ordered_json;

/// What became of one step of one unit.
struct StepRecord {
  std::string name;
  std::chrono::milliseconds time{0};
  int retries = 0;  ///< how often something was asked, sent or saved again
  bool passed = false;
  RecordJson values = RecordJson::object();  ///< what was measured
};

/// What became of one unit, from its port's opening to its verdict.
struct UnitRecord {
  std::string unit;  ///< told apart from every other unit by it
  std::string serial;
  std::string port;
  std::string started;  ///< "2024-05-17T12:34:56.789Z"
  std::chrono::milliseconds time{0};
  std::string verdict;  ///< "pass", "fail", or "stopped" by the operator
  std::string why;      ///< empty for "pass"
  bool rehearsed = false;
  std::vector<StepRecord> steps;

  bool passed() const { return verdict == "pass"; }
  /// The step that it ended with, where it did not pass; empty when it did or began none.
  std::string failed_step() const;
  int retries() const;
};

/// The record as one line of JSON, without its line end; here in several, with dots for what is left out:
///
///     {"unit":"2026-11-22T02:51:01.123Z-4711-1","serial":"L7-0001","port":"COM5",
///     "started":"2026-11-22T02:51:01.123Z","seconds":48.2,"verdict":"fail",
///     "why":"the chip did not answer","failed_step":"expect","retries":2,
///     "steps":[{"step":"expect","result":"fail","seconds":6.1,"retries":2}],"recipe":"Lot 7",...}
std::string record_line(const UnitRecord& record, const Recipe& recipe);

}  // namespace qv5123
