#include "cli/headless_host.h"

namespace qv5123 {

void HeadlessHost::show_progress(std::optional<int> percent) {
  chip_.out().progress(percent ? std::to_string(*percent) + " %" : "");
}

void HeadlessHost::set_busy(bool busy) {
  if (!busy) show_progress(std::nullopt);
}

}  // namespace qv5123
