#pragma once

#include <memory>

#include "support/desk_bench.h"
#include "support/page_driver.h"

namespace qv5123::test {

/// A page over a fake wire, driven as a user drives it.
template <class Dialog>
class PageBench : public DeskBench {
 protected:
  PageBench() {
    host_.page = &page_;
    page_.resize(900, 650);
  }

  std::unique_ptr<Dialog> owned_ = std::make_unique<Dialog>(host_);
  Dialog& page_ = *owned_;
  PageDriver user_{page_};
};

}  // namespace qv5123::test
