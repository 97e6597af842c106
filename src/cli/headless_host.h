#pragma once

#include "cli/chip.h"
#include "console/page_host.h"
#include "provision/unattended.h"

namespace qv5123 {

/// Runs a desk without a window. Commands say by themselves what came of them.
class HeadlessHost final : public DeskHost {
 public:
  explicit HeadlessHost(Chip& chip) : chip_(chip) {}

  CommandLink& link() override { return chip_.link(); }
  void show_status(const std::string&) override {}
  void append_console(const std::string& text) override { chip_.out().warning(text); }
  void show_failure(const std::string& text) override { last_failure_ = text; }
  /// Empty while all went well.
  const std::string& last_failure() const { return last_failure_; }
  void show_progress(std::optional<int> percent) override;
  /// One flow at a time runs here.
  void set_busy(bool busy) override;

 private:
  Chip& chip_;
  std::string last_failure_;
};

}  // namespace qv5123
