#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "link/register_write.h"
#include "link/sender.h"

namespace qv5123 {

/// Something that left for the chip, told once its job is over, in the order of leaving. What changes nothing
/// on the chip, such as a request for a reply, is told as well.
struct WriteEvent {
  struct Value {
    std::size_t field = 0;   ///< its place in the page's list of fields
    std::string name;        ///< within the page, "clamp.gr"
    std::optional<int> old;  ///< what the chip was known to hold before
    int now = 0;
  };
  /// As files and the command line call it, "awb". Empty where nobody said what the job was about; what it
  /// wrote is then all that is known of it.
  std::string page;
  std::string control;        ///< as the user knows it: "Parameter-1", "File/Flash Save"
  std::vector<Value> values;  ///< none but `old` is known to be on the chip before the result is looked at
  Traffic batches;  ///< what left, flush by flush; an empty batch stands for bytes that are no frames
  JobResult result;
};

using WriteListener = std::function<void(const WriteEvent&)>;

}  // namespace qv5123
