#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/fake_page_host.h"

namespace qv5123::test {

/// The world around a page's desk: a fake wire, and the main form as a page sees it.
class DeskBench : public testing::Test {
 protected:
  /// What was sent since the last call, once so much time has passed.
  std::string wire(int milliseconds = 1000) {
    fake_.advance(milliseconds);
    const std::string all = fake_.sender.wire();
    return all.substr(std::exchange(seen_, all.size()));
  }
  /// What was sent once a page's picker is switched on or off.
  template <class Desk>
  std::string switched(Desk& desk, bool on, int milliseconds = 3000) {
    desk.picker().click_switch(on);
    return wire(milliseconds);
  }
  /// The chip answers `request`, and nothing else, with this block.
  void answer(const std::string& request, const std::string& reply) {
    fake_.sender.chip = [this, request, reply](const std::string& bytes) {
      if (bytes == request) fake_.receive("~" + reply + "^");
    };
  }
  /// From now on a chip is there whose picker reads 10, 20, 30 everywhere.
  void answer_picker() {
    fake_.sender.chip = [this](const std::string& bytes) {
      if (bytes == "@940a*@9429*") fake_.receive("~05^");
      if (bytes == "@940a*@9410*") fake_.receive("~03^");
      if (bytes == "@940c*@943d*" || bytes == "@940c*@9492*") fake_.receive("~0a^");
      if (bytes == "@940c*@943e*" || bytes == "@940c*@9496*") fake_.receive("~14^");
      if (bytes == "@940c*@943f*" || bytes == "@940c*@949a*") fake_.receive("~1E^");
    };
  }
  /// The chip's answer to the load that was started.
  void answer_load(const std::string& reply) {
    fake_.advance(60);
    fake_.receive("~" + reply + "^");
    fake_.advance(300);
  }
  /// A page loads from a chip that answers this.
  template <class Desk>
  void load_desk(Desk& desk, const std::string& reply) {
    desk.start_load();
    answer_load(reply);
  }
  UserDataImage& image() { return host_.doc.user_data; }

  FakeWire fake_;
  FakePageHost host_{fake_};

 private:
  std::size_t seen_ = 0;
};

}  // namespace qv5123::test
