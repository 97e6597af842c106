#pragma once

#include <functional>
#include <string>
#include <utility>

namespace qv5123 {

/// A page with steps of its own, which the window's "Undo" and "Redo" take back and make again while it is
/// shown.
class OwnSteps {
 public:
  virtual ~OwnSteps() = default;
  /// The name of the step that undo_step() takes back, and that redo_step() makes again; empty when there is
  /// none.
  virtual std::string next_undo() const = 0;
  virtual std::string next_redo() const = 0;
  virtual void undo_step() = 0;
  virtual void redo_step() = 0;
  /// Who is told that the names may be others; the last one counts.
  void on_steps_changed(std::function<void()> changed) { changed_ = std::move(changed); }

 protected:
  void tell_steps_changed() const {
    if (changed_) changed_();
  }

 private:
  std::function<void()> changed_;
};

}  // namespace qv5123
