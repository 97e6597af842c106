#pragma once

#include <memory>
#include <string>
#include <vector>

#include "provision/metrics.h"
#include "provision/record_book.h"
#include "provision/unit.h"

namespace qv5123 {

/// Where a place of the line stands.
struct PlaceState {
  enum class Phase {
    waiting,   ///< for a board
    working,   ///< on a unit
    finished,  ///< the unit is recorded; with --watch it may be taken away
    over,      ///< no unit comes any more
  };
  std::string port;
  Phase phase = Phase::waiting;
  std::string serial;
  std::string step;                   ///< under way
  std::size_t step_number = 0;        ///< from 1
  int percent = 0;                    ///< of the whole unit
  std::chrono::milliseconds left{0};  ///< until its end, about
  std::string words;                  ///< the verdict, or what is waited for
};

/// Who looks at the line. As it stands, nobody.
class LineView {
 public:
  virtual ~LineView() = default;
  virtual void step_began(const PlaceState&) {}
  /// The unit's record is on the disk.
  virtual void unit_over(const PlaceState&, const UnitRecord&) {}
  /// Something that belongs to no unit's record.
  virtual void trouble(const std::string&) {}
};

/// Boards beside each other, each with its own port, all on one scheduler. A board that fails stops alone.
class ProductionLine {
 public:
  struct Options {
    bool watch = false;  ///< after a unit comes the next, until interrupt()
    std::chrono::milliseconds timeout{1800};
    std::filesystem::path metrics;  ///< empty for none
    bool dry = false;               ///< a rehearsal leaves no files but records, and uses no serial numbers
  };

  ProductionLine(Scheduler& scheduler, Background& background, const Recipe& recipe,
                 const RecordBook& records, LineView& view, Options options);
  ~ProductionLine();
  ProductionLine(const ProductionLine&) = delete;
  ProductionLine& operator=(const ProductionLine&) = delete;

  void add(std::unique_ptr<BoardPort> port);
  /// Begins with the ports that were added.
  void start();
  /// The first time no further unit begins; the second time those that run end at their next block.
  void interrupt();

  bool over() const;
  int passed() const { return passed_; }
  int failed() const { return failed_; }
  /// Not every port had its unit; with `watch`, none had.
  bool incomplete() const;
  /// Why records could not be written; empty while they can. No unit begins any more then.
  const std::string& record_trouble() const { return record_trouble_; }
  std::vector<PlaceState> places() const;

 private:
  class Place;

  std::string next_unit();
  /// Whether after a unit comes the next.
  bool goes_on() const;
  Task<bool> may_begin();
  Task<> record(const PlaceState& state, const UnitRecord& record);
  Task<> write_metrics();

  Scheduler& scheduler_;
  Background& background_;
  const Recipe& recipe_;
  const RecordBook& records_;
  LineView& view_;
  const Options options_;
  Metrics metrics_;
  std::vector<std::unique_ptr<Place>> places_;
  int interrupts_ = 0;
  int units_ = 0;
  int passed_ = 0;
  int failed_ = 0;
  std::string record_trouble_;
  std::string metrics_trouble_;
};

}  // namespace qv5123
