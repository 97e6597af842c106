#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "state/sending_sum.h"
#include "state/value_states.h"
#include "state/write_journal.h"

namespace qv5123 {

/// What has to be sent so that the chip holds again what it held at a moment of a journal, as far as values
/// have names.
struct WayBack {
  struct Value {
    std::size_t field = 0;    ///< its place in the page's list of fields
    std::optional<int> chip;  ///< what the chip is known to hold now
    int then = 0;
  };
  struct Page {
    std::size_t page = 0;  ///< its place in kTuningPages
    std::vector<Value> values;
    /// What the same controls send with them and the chip holds as it did then.
    std::vector<Value> neighbours;

    std::vector<std::size_t> fields() const;
  };
  std::vector<Page> pages;
  /// "awb.a_slope: chip 12, then 20", also of those that nothing sends alone.
  std::vector<std::string> differences;
  std::size_t unsendable = 0;  ///< how many of them those are
  /// What goes along as its page has it, for nobody knows what it was then: "awb.b_slope: chip 12, page 20".
  std::vector<std::string> unknown;
};

/// What differs between `then` and what the chip is known to hold. What is not known of it counts as
/// differing.
WayBack way_back(const KnownValues& then, const ValueStates& states);

/// Completes `page`, one of `way`, by what goes along when its values are sent: `sent` is all that the chip
/// holds afterwards.
void add_neighbours(WayBack& way, WayBack::Page& page, const std::vector<WriteNote::Value>& sent,
                    const KnownValues& then, const ValueStates& states);

/// How many writes behind the first `count` of a journal have no names, and so no way back.
std::size_t unnamed_writes_after(const WriteJournal& journal, std::size_t count);

/// The question before it is sent.
std::string way_back_question(const WayBack& way, const SendingSum& sum, std::size_t unnamed);

}  // namespace qv5123
