#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "console/document.h"
#include "console/page_host.h"
#include "state/value_states.h"
#include "tuning/verification.h"

namespace qv5123 {

/// Reads all tuning pages back after the whole user data was sent, and compares what the pages' replies have
/// of it.
class ImageCheck {
 public:
  /// Both must outlive it.
  ImageCheck(DeskHost& host, ValueStates& states) : host_(host), states_(states) {}

  /// From now on this is what was sent.
  void sent(const UserDataImage& image) { document_.user_data = image; }
  /// Asks the chip for each page in turn.
  Task<> verify();
  /// Sends what differs or was not proven again in the brackets of each page's save, and reads back, at most
  /// so many times.
  Task<> repair(int times);

  /// "Verified: 815 of 815 values", "2 of 815 values differ: awb A Slope (sent 1, chip 2), ...", also with
  /// the pages that could not be read behind it, or these alone: "Not verified: no answer from the chip
  /// (awb)".
  std::string text() const;
  std::vector<std::string> differences() const;
  /// Whether something differs or was not proven.
  bool can_repair() const;

 private:
  struct PageResult {
    std::size_t page = 0;
    Verification found;
  };

  std::vector<WriteNote::Value> values_of(std::size_t page) const;
  Task<> send_again(const PageResult& result);

  DeskHost& host_;
  ValueStates& states_;
  CQV5123Doc document_;
  std::vector<PageResult> results_;
};

}  // namespace qv5123
