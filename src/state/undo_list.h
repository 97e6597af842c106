#pragma once

#include <any>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "state/value_states.h"

namespace qv5123 {

/// The steps that changed values of the tuning pages, so that they can be taken back and made again. What a
/// step had sent is sent as it was before in the same way: through the values' own controls, or in the
/// brackets of a full save. Where the page stands, such as its cursor, is no part of a step.
///
/// A page that is closed takes its steps with it, and of those that other pages have a part in its own part.
/// A port that is closed or lost changes nothing in the pages: a step is then taken back there alone.
class UndoList {
 public:
  /// Older steps than so many are forgotten. Each holds a page's values twice, some 2 KB.
  static constexpr std::size_t kMostSteps = 1000;
  /// What is typed, stepped or slid in the same edit within this time is one step.
  static constexpr std::chrono::milliseconds kOneStep{1000};

  /// `states` must outlive the list. `say` gets a line for the status bar, `changed` is told of other steps.
  UndoList(ValueStates& states, Scheduler& scheduler, std::function<void(const std::string&)> say,
           std::function<void()> changed);
  UndoList(const UndoList&) = delete;
  UndoList& operator=(const UndoList&) = delete;

  /// The name of the step that undo() takes back, and that redo() makes again; empty when there is none.
  std::string next_undo() const { return place_ > 0 ? steps_[place_ - 1].what : std::string(); }
  std::string next_redo() const { return place_ < steps_.size() ? steps_[place_].what : std::string(); }
  void undo();
  void redo();
  std::size_t size() const { return steps_.size(); }

 private:
  /// The values of one page around a step.
  struct Part {
    TuningDesk* desk = nullptr;
    std::any before;
    std::any after;
    /// What of it was brought to the chip, and whether with a full save.
    std::set<std::size_t> sent = {};
    bool with_save = false;
  };
  struct Step {
    std::string what;
    DeskChange::Kind kind = DeskChange::Kind::typed;
    unsigned drag = 0;
    std::vector<Part> parts;
    std::chrono::milliseconds time{0};
    std::uint64_t jobs = 0;  ///< that had left when it was made, or taken back or made again last
  };

  void take(TuningDesk& desk, const DeskChange& change);
  bool belongs_to_last(const TuningDesk& desk, const DeskChange& change) const;
  void note_one_go();
  void closed(const TuningDesk& desk);
  void go(Step& step, bool back);
  void note_sent(const Step& step, Part& part) const;
  std::vector<std::size_t> fields_that_differ(const std::any& a, const std::any& b, std::size_t page) const;

  ValueStates& states_;
  Scheduler& scheduler_;
  std::function<void(const std::string&)> say_;
  std::function<void()> changed_;
  std::deque<Step> steps_;
  std::size_t place_ = 0;  ///< steps before it are made, those from it on are taken back
  bool going_ = false;
  bool in_one_go_ = false;  ///< nobody else has had a turn since the last step was taken
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace qv5123
