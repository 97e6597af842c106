#pragma once

#include <any>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "link/write_note.h"

namespace qv5123 {

class TuningDesk;
struct Verification;

/// Something that has changed values of a page, and can be taken back.
struct DeskChange {
  enum class Kind {
    typed,      ///< in an edit, a list or a box
    dragged,    ///< in a chart; many of them make one drag
    measured,   ///< a colour was picked, a sweep was made
    computed,   ///< a fit, a curve, a correction
    from_chip,  ///< the page was read back
    from_file,  ///< "Load <- File", or a setting file was loaded
    taken_over  ///< single values from chip or file
  };
  Kind kind = Kind::typed;
  std::string what;   ///< as the user knows it: "LED Dimmer", "Calculate"
  std::any before;    ///< the page's values as TuningModel::keep() gave them
  unsigned drag = 0;  ///< of dragged values: those of one drag have the same number
};

/// Who keeps account of what the pages hold and what the chip holds. A desk tells it, and works the same
/// where nobody listens. All calls are on the scheduler's thread.
class DeskWatcher {
 public:
  virtual ~DeskWatcher() = default;
  /// The desk exists, and its values may be asked for until it is closed.
  virtual void opened(TuningDesk& desk) = 0;
  virtual void closed(TuningDesk& desk) = 0;
  /// Values have changed.
  virtual void changed(TuningDesk& desk, const DeskChange& change) = 0;
  /// Former values have been put back.
  virtual void restored(TuningDesk& desk) = 0;
  /// Counts the jobs that have left for the chip.
  virtual std::uint64_t jobs() const = 0;
  /// The chip has answered with its values. It was asked when so many jobs had left.
  virtual void reported(TuningDesk& desk, std::string_view reply, std::uint64_t asked_at) = 0;

  /// Whether a page is to be read back after its full save.
  virtual bool verifies_saves() const { return false; }
  /// A full save begins: what was found after the last one is past.
  virtual void saves(TuningDesk&) {}
  /// The page is being read back.
  virtual void verifies(TuningDesk&) {}
  /// What came of it. `sent` is what was to be on the chip; it was asked when so many jobs had left.
  virtual void verified(TuningDesk&, const std::vector<WriteNote::Value>& sent, const Verification&,
                        std::uint64_t asked_at) {
    (void)sent, (void)asked_at;
  }
};

}  // namespace qv5123
