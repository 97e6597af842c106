#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tuning/tuning_desk.h"

namespace qv5123::test {

/// The place in the desk's list of the value that the command line calls so.
inline std::size_t field_place(const TuningDesk& desk, const std::string& name) {
  const std::vector<FieldInfo>& fields = desk.model().fields();
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (fields[i].name == name) return i;
  ADD_FAILURE() << "no value is named " << name;
  return 0;
}

/// The registers of all writes in which the two differ.
inline std::set<int> changed_registers(const Traffic& before, const Traffic& after) {
  std::set<int> registers;
  for (std::size_t flush = 0; flush < std::min(before.size(), after.size()); ++flush)
    for (std::size_t i = 0; i < std::min(before[flush].size(), after[flush].size()); ++i)
      if (before[flush][i] != after[flush][i]) registers.insert(after[flush][i].address);
  return registers;
}

/// A value's control writes the register that the value's tooltip tells, and every register that is told is
/// written by some control.
inline void expect_controls_write_registers(TuningDesk& desk) {
  std::set<int> told;
  std::set<int> written;
  const std::vector<FieldInfo>& fields = desk.model().fields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].sent_by == Field::kNowhere || fields[i].address == Field::kNowhere) continue;
    told.insert(fields[i].address);
    const Traffic before = desk.control_traffic(fields[i].sent_by);
    const int number = desk.model().numbers()[i];
    desk.model().set_number(i, number == fields[i].range.highest ? number - 1 : fields[i].range.highest);
    const std::set<int> changed = changed_registers(before, desk.control_traffic(fields[i].sent_by));
    desk.model().set_number(i, number);
    written.insert(changed.begin(), changed.end());
    // What its neighbours do not let it be changes nothing.
    if (changed.empty()) continue;
    EXPECT_EQ(changed, std::set<int>{fields[i].address}) << fields[i].name;
  }
  EXPECT_EQ(told, written);
}

}  // namespace qv5123::test
