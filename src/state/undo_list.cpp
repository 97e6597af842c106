#include "state/undo_list.h"

#include <algorithm>
#include <utility>

#include "tuning/tuning_desk.h"

namespace qv5123 {
namespace {

/// Whether pages change so one after the other at the same time.
bool is_of_pages(DeskChange::Kind kind) {
  return kind == DeskChange::Kind::from_file || kind == DeskChange::Kind::taken_over;
}

}  // namespace

UndoList::UndoList(ValueStates& states, Scheduler& scheduler, std::function<void(const std::string&)> say,
                   std::function<void()> changed)
    : states_(states), scheduler_(scheduler), say_(std::move(say)), changed_(std::move(changed)) {
  states.on_desk_change([this](TuningDesk& desk, const DeskChange& change) { take(desk, change); });
  states.on_close([this](TuningDesk& desk) { closed(desk); });
}

/// A drag is one step, however long it lasts. A setting file that is loaded changes all pages
/// at once, and so may values that are taken over.
bool UndoList::belongs_to_last(const TuningDesk& desk, const DeskChange& change) const {
  if (place_ == 0) return false;
  const Step& last = steps_[place_ - 1];
  if (last.kind != change.kind) return false;
  const bool same_page = last.parts.size() == 1 && last.parts.front().desk == &desk;
  const auto since = scheduler_.now() - last.time;
  if (change.kind == DeskChange::Kind::dragged) return same_page && last.drag == change.drag;
  if (is_of_pages(change.kind)) return !same_page && in_one_go_;
  return change.kind == DeskChange::Kind::typed && same_page && last.what == change.what &&
         since < kOneStep && last.jobs == states_.jobs();
}

void UndoList::take(TuningDesk& desk, const DeskChange& change) {
  if (going_) return;
  const bool joins = place_ == steps_.size() && belongs_to_last(desk, change);
  steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(place_), steps_.end());
  if (!joins) {
    steps_.push_back({change.what, change.kind, change.drag, {}, {}, 0});
    if (steps_.size() > kMostSteps) steps_.pop_front();
  }
  place_ = steps_.size();
  note_one_go();
  Step& step = steps_.back();
  step.time = scheduler_.now();
  step.jobs = states_.jobs();
  if (joins && !is_of_pages(change.kind))
    step.parts.front().after = desk.model().keep();
  else
    step.parts.push_back({&desk, change.before, desk.model().keep()});
  changed_();
}

/// Until others have their turn.
void UndoList::note_one_go() {
  if (std::exchange(in_one_go_, true)) return;
  scheduler_.post([this, alive = std::weak_ptr<bool>(alive_)] {
    if (alive.lock()) in_one_go_ = false;
  });
}

void UndoList::closed(const TuningDesk& desk) {
  for (std::size_t i = steps_.size(); i-- > 0;) {
    std::erase_if(steps_[i].parts, [&desk](const Part& part) { return part.desk == &desk; });
    if (!steps_[i].parts.empty()) continue;
    steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(i));
    if (i < place_) --place_;
  }
  changed_();
}

void UndoList::undo() {
  if (place_ == 0) return;
  go(steps_[--place_], true);
}

void UndoList::redo() {
  if (place_ == steps_.size()) return;
  go(steps_[place_++], false);
}

void UndoList::go(Step& step, bool back) {
  const std::string what = (back ? "Undone: " : "Redone: ") + step.what;
  say_(what);
  going_ = true;
  for (Part& part : step.parts) {
    note_sent(step, part);
    part.desk->restore(back ? part.before : part.after);
    if (!part.sent.empty())
      part.desk->send_values(what, {part.sent.begin(), part.sent.end()}, part.with_save);
  }
  going_ = false;
  step.jobs = states_.jobs();
  // What is typed next is another step.
  step.time = scheduler_.now() - kOneStep;
  changed_();
}

/// What was sent once goes to the chip with every undo and redo: the last job may still be on its way. What
/// only the full save sends, such as the gamma page's channel, has no way of its own back.
void UndoList::note_sent(const Step& step, Part& part) const {
  const std::size_t page = states_.page_named(part.desk->model().texts().name);
  const std::vector<std::size_t> fields = fields_that_differ(part.before, part.after, page);
  for (const std::size_t field : fields) {
    if (states_.fields(page)[field].sent_by == Field::kNowhere) continue;
    const ValueStates::Sent sent = states_.sent_since(page, field, step.jobs);
    if (sent != ValueStates::Sent::no) part.sent.insert(field);
    part.with_save = part.with_save || sent == ValueStates::Sent::with_save;
  }
}

/// Those that both kept values have and in which they differ.
std::vector<std::size_t> UndoList::fields_that_differ(const std::any& a, const std::any& b,
                                                      std::size_t page) const {
  const std::vector<int> numbers_a = states_.numbers_of(page, a);
  const std::vector<int> numbers_b = states_.numbers_of(page, b);
  std::vector<std::size_t> fields;
  for (std::size_t i = 0; i < numbers_a.size(); ++i)
    if (numbers_a[i] != numbers_b[i]) fields.push_back(i);
  return fields;
}

}  // namespace qv5123
