#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qv5123 {

/// What a job is about, said by whoever sends it, for those who keep account of what left for the chip.
struct WriteNote {
  struct Value {
    std::size_t field = 0;  ///< its place in the page's list of fields
    int number = 0;         ///< as the page shows it
  };
  std::string page;     ///< as files and the command line call it, "awb"; empty for the main form
  std::string control;  ///< as the user knows it: "Parameter-1", "File/Flash Save"
  /// What the chip holds once all of the job has left.
  std::vector<Value> values;
};

}  // namespace qv5123
