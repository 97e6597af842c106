#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "support/fake_page_host.h"
#include "support/page_driver.h"

namespace qv5123::test {

/// A page over a fake wire, driven as a user drives it.
template <class Dialog>
class PageBench : public testing::Test {
 protected:
  PageBench() {
    host_.page = &page_;
    page_.resize(900, 650);
  }
  /// What was sent since the last call, once so much time has passed.
  std::string wire(int milliseconds = 1000) {
    fake_.advance(milliseconds);
    const std::string all = fake_.sender.wire();
    return all.substr(std::exchange(seen_, all.size()));
  }
  /// The chip answers `request`, and nothing else, with this block.
  void answer(const std::string& request, const std::string& reply) {
    fake_.sender.chip = [this, request, reply](const std::string& bytes) {
      if (bytes == request) fake_.receive("~" + reply + "^");
    };
  }
  /// The chip's answer to the load that the user has started.
  void answer_load(const std::string& reply) {
    fake_.advance(60);
    fake_.receive("~" + reply + "^");
    fake_.advance(300);
  }

  FakeWire fake_;
  FakePageHost host_{fake_};
  std::unique_ptr<Dialog> owned_ = std::make_unique<Dialog>(host_);
  Dialog& page_ = *owned_;
  PageDriver user_{page_};

 private:
  std::size_t seen_ = 0;
};

}  // namespace qv5123::test
