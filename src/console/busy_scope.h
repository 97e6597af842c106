#pragma once

#include "console/page_host.h"

namespace qv5123 {

/// Tells the host that something lasts which closing the window should ask about.
class BusyScope {
 public:
  explicit BusyScope(DeskHost& host) : host_(host) { host_.set_busy(true); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;
  ~BusyScope() { host_.set_busy(false); }

 private:
  DeskHost& host_;
};

}  // namespace qv5123
