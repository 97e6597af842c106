#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/chip.h"
#include "cli/output.h"
#include "tuning/page_model.h"
#include "tuning/verification.h"

namespace qv5123 {

/// The pages that are meant; "all" is all of them, in their order. A name that is no page's is a Complaint.
std::vector<std::string> pages_named(const std::vector<std::string>& names);

/// "6 values read back agree", as a remark.
std::string read_back_text(std::size_t values);

inline constexpr const char* kRepairHelp =
    "Read back as --verify does, and send what differs or was not proven again, at most N times";

/// Values beside each other, as JSON, and what differs as lines "awb.a_slope: chip 12, file 20".
struct Compared {
  const char* one;  ///< what the two sides are called
  const char* other;
  std::size_t compared = 0;
  Json differences = Json::array();
  std::string text = {};

  void add(const std::string& name, int one_number, int other_number);
};

/// How values that were sent are read back, and sent again.
struct ReadBack {
  std::function<Task<Verification>()> verify;
  std::function<Task<Verification>(Verification found)> repair;
};
/// Reads back, and repairs at most so many times, which it says. A Complaint where the chip did not answer in
/// the end, or its answers prove nothing.
Task<Verification> read_back(Chip& chip, const TuningModel& page, const ReadBack& how, int repairs);
/// What differs after all.
void add_differences(const TuningModel& page, const Verification& found, Compared& result);

/// "awb.a_slope".
std::string full_name(const TuningModel& page, const FieldInfo& field);

/// Brings `page` to what the chip has of it, and returns the reply. What the chip does not report stays.
Task<std::string> read_page(Chip& chip, TuningModel& page);

/// The same with what two replies said alike: for values that are sent to the chip again.
Task<std::string> read_page_surely(Chip& chip, TuningModel& page);

}  // namespace qv5123
