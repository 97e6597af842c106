#include "state/value_states.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "state/chip_touch.h"
#include "tuning/dynamic.h"
#include "tuning/front.h"
#include "tuning/tuning_desk.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

Traffic what_left(const SentJob& job) {
  const std::size_t left = std::min(job.result.chunks_sent, job.writes.size());
  return {job.writes.begin(), job.writes.begin() + static_cast<std::ptrdiff_t>(left)};
}

/// Whether bytes left that are no frames.
bool has_bytes(const SentJob& job) {
  std::size_t framed = 0;
  for (const Batch& batch : job.writes) framed += frames(batch).size();
  const auto is_no_frame = [](const Batch& batch) { return batch.empty(); };
  return job.result.bytes_sent > framed ||
         (job.result.bytes_sent > 0 && std::all_of(job.writes.begin(), job.writes.end(), is_no_frame));
}

/// Some of it may have reached the chip.
bool left_at_all(const SentJob& job) {
  return job.result.chunks_sent > 0 || job.result.bytes_sent > 0;
}

bool left_whole(const SentJob& job) {
  return !job.result.failed && job.result.chunks_sent >= job.writes.size() && job.same_connection;
}

}  // namespace

ValueStates::ValueStates(CommandLink& link, Clock clock)
    : scheduler_(link.scheduler()), clock_(std::move(clock)) {
  for (const char* name : kTuningPages) {
    Page& page = pages_.emplace_back(Page{name, make_model(name), nullptr, {}, {}});
    page.values.resize(page.model->fields().size());
    for (const FieldInfo& field : page.model->fields())
      if (field.address != Field::kNowhere) value_registers_.set(static_cast<std::size_t>(field.address));
  }
  link.tell_of_jobs([this, alive = alive_](const SentJob& job) {
    if (*alive) job_over(job);
  });
  link.tell_of_connections([this, alive = alive_] {
    if (!*alive) return;
    forget_chip();
    tell_changed();
  });
}

ValueStates::~ValueStates() {
  *alive_ = false;
}

template <class Does>
void ValueStates::each_value(Does does) {
  for (Page& page : pages_) {
    for (std::size_t i = 0; i < page.values.size(); ++i) does(page.model->fields()[i], page.values[i]);
  }
}

std::size_t ValueStates::page_named(std::string_view name) const {
  for (std::size_t i = 0; i < pages_.size(); ++i)
    if (pages_[i].name == name) return i;
  throw std::out_of_range("no tuning page of that name");
}

ValueStates::Page* ValueStates::page_of(const TuningDesk& desk) {
  const auto found =
      std::find_if(pages_.begin(), pages_.end(), [&desk](const Page& page) { return page.desk == &desk; });
  return found == pages_.end() ? nullptr : &*found;
}

std::vector<int> ValueStates::numbers_of(std::size_t page, const std::any& kept) const {
  const std::unique_ptr<TuningModel> model = make_model(pages_[page].name);
  model->restore(kept);
  return model->numbers();
}

void ValueStates::opened(TuningDesk& desk) {
  Page& page = pages_[page_named(desk.model().texts().name)];
  page.desk = &desk;
  page.shown.clear();
  tell_changed();
}

void ValueStates::closed(TuningDesk& desk) {
  Page* page = page_of(desk);
  if (!page) return;
  page->desk = nullptr;
  for (Value& value : page->values) value.touched = false;
  for (const auto& told : close_listeners_) told(desk);
  tell_changed();
}

void ValueStates::changed(TuningDesk& desk, const DeskChange& change) {
  Page* page = page_of(desk);
  if (!page) return;
  const bool loaded =
      change.kind == DeskChange::Kind::from_chip || change.kind == DeskChange::Kind::from_file;
  const std::vector<int> old = numbers_of(static_cast<std::size_t>(page - pages_.data()), change.before);
  const std::vector<int> now = desk.model().numbers();
  for (std::size_t i = 0; i < old.size(); ++i)
    if (old[i] != now[i]) page->values[i].touched = !loaded;
  for (const auto& told : desk_listeners_) told(desk, change);
  tell_changed();
}

void ValueStates::reported(TuningDesk& desk, std::string_view reply, std::uint64_t asked_at) {
  Page* page = page_of(desk);
  if (!page) return;
  page_reported(static_cast<std::size_t>(page - pages_.data()), reply, asked_at);
}

bool ValueStates::page_reported(std::size_t at, std::string_view reply, std::uint64_t asked_at) {
  Page& page = pages_[at];
  if (!page.model->take_reply(reply)) return false;
  const std::vector<int> numbers = page.model->numbers();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    Value& value = page.values[i];
    // What was sent since the chip was asked is newer than its answer.
    if (!page.model->fields()[i].has_reply() || value.written_at > asked_at) continue;
    const bool stands = value.chip.how == Known::verified && value.chip.number == numbers[i];
    value.chip = {stands ? Known::verified : Known::read, numbers[i], clock_()};
    value.touched = false;
  }
  tell_changed();
  return true;
}

void ValueStates::restored(TuningDesk&) {
  tell_changed();
}

ValueStates::Sent ValueStates::sent_since(std::size_t page, std::size_t field, std::uint64_t jobs) const {
  const Value& value = pages_[page].values[field];
  if (value.sent_at <= jobs) return Sent::no;
  return value.with_save ? Sent::with_save : Sent::alone;
}

void ValueStates::saves(TuningDesk& desk) {
  for (const auto& told : save_listeners_) told(desk);
}

void ValueStates::verifies(TuningDesk& desk) {
  for (const auto& told : verification_listeners_) told(desk, nullptr);
}

void ValueStates::verified(TuningDesk& desk, const std::vector<WriteNote::Value>& sent,
                           const Verification& verification, std::uint64_t asked_at) {
  Page* page = page_of(desk);
  if (page && verification.reported > 0) take_verified(*page, sent, verification, asked_at);
  for (const auto& told : verification_listeners_) told(desk, &verification);
}

void ValueStates::take_verified(Page& page, const std::vector<WriteNote::Value>& sent,
                                const Verification& verification, std::uint64_t asked_at) {
  const auto is_newer = [&](std::size_t field) { return page.values[field].written_at > asked_at; };
  for (const WriteNote::Value& value : sent) {
    if (!page.model->fields()[value.field].has_reply() || is_newer(value.field)) continue;
    page.values[value.field].chip = {Known::verified, value.number, clock_()};
  }
  for (const Verification::Difference& found : verification.differences)
    if (!is_newer(found.field)) page.values[found.field].chip = {Known::read, found.chip, clock_()};
  tell_changed();
}

void ValueStates::job_over(const SentJob& job) {
  WriteEvent event;
  event.batches = what_left(job);
  event.result = job.result;
  if (left_at_all(job)) ++jobs_;
  if (job.note)
    take_noted(job, event);
  else if (left_at_all(job))
    take_undescribed(job);
  for (const auto& told : write_listeners_) told(event);
  if (left_at_all(job)) tell_changed();
}

void ValueStates::take_noted(const SentJob& job, WriteEvent& event) {
  event.page = job.note->page;
  event.control = job.note->control;
  // A note without values names a control, such as a key of the chip's menu, and says nothing of what it
  // does.
  if (event.page.empty() || job.note->values.empty()) {
    if (left_at_all(job)) take_undescribed(job);
    return;
  }
  Page& page = pages_[page_named(event.page)];
  for (const WriteNote::Value& sent : job.note->values) {
    Value& value = page.values[sent.field];
    const bool known = value.chip.how != Known::nothing;
    event.values.push_back({sent.field, page.model->fields()[sent.field].name,
                            known ? std::optional(value.chip.number) : std::nullopt, sent.number});
    if (!left_at_all(job)) continue;
    value.written_at = value.sent_at = jobs_;
    value.with_save = event.control == kFullSave;
    value.chip = {left_whole(job) ? Known::sent : Known::nothing, sent.number, clock_()};
    if (left_whole(job)) value.touched = false;
  }
  if (left_at_all(job)) follow_video_mode(*job.note);
}

/// The dynamic page's reply also tells video mode and day or night mode, which the ISP tune page sets.
void ValueStates::follow_video_mode(const WriteNote& note) {
  if (note.page != FrontPage::kTexts.name) return;
  Page& dynamic = pages_[page_named(DynamicPage::kTexts.name)];
  const auto& fields = dynamic.model->fields();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].sendable()) continue;
    dynamic.values[i].chip.how = Known::nothing;
    dynamic.values[i].written_at = jobs_;
  }
}

void ValueStates::take_undescribed(const SentJob& job) {
  ChipTouch touch;
  // What failed may have left in part.
  for (const Batch& batch : job.result.failed ? job.writes : what_left(job))
    touch.add(batch, value_registers_);
  if (has_bytes(job) || touch.everything)
    forget_chip();
  else
    forget(touch.registers);
}

void ValueStates::forget_chip() {
  each_value([this](const FieldInfo&, Value& value) {
    value.chip.how = Known::nothing;
    value.written_at = jobs_;
  });
}

void ValueStates::forget(const std::bitset<256>& registers) {
  each_value([&](const FieldInfo& field, Value& value) {
    if (field.address == Field::kNowhere || !registers.test(static_cast<std::size_t>(field.address))) return;
    value.chip.how = Known::nothing;
    value.written_at = jobs_;
  });
}

void ValueStates::file_is(const UserDataImage& image) {
  file_ = image;
  for (Page& page : pages_) {
    page.model->load_all(image);
    const std::vector<int> numbers = page.model->numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i)
      if (page.model->fields()[i].has_entry()) page.values[i].file = numbers[i];
  }
  tell_changed();
}

int taken_from_image(const FieldInfo& field, int number, const UserDataImage& image) {
  if (!field.entry_as || field.size != FieldSize::word) return field.held_by_chip(number);
  return field.in_reply().decode(image.word(static_cast<std::size_t>(field.entry)));
}

void ValueStates::image_sent(const UserDataImage& image) {
  for (Page& page : pages_) {
    page.model->load_all(image);
    const std::vector<int> numbers = page.model->numbers();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (!page.model->fields()[i].has_entry()) continue;
      page.values[i].chip = {Known::sent, taken_from_image(page.model->fields()[i], numbers[i], image),
                             clock_()};
      page.values[i].written_at = jobs_;
    }
  }
  tell_changed();
}

ValueState ValueStates::state_of(const Page& page, std::size_t field, const std::vector<int>& numbers) const {
  const Value& value = page.values[field];
  ValueState state{std::nullopt, value.chip, value.file, value.touched};
  if (page.desk) state.page = numbers[field];
  return state;
}

std::vector<ValueState> ValueStates::states(std::size_t at) const {
  const Page& page = pages_[at];
  const std::vector<int> numbers = page.desk ? page.desk->model().numbers() : std::vector<int>();
  std::vector<ValueState> states;
  states.reserve(page.values.size());
  for (std::size_t i = 0; i < page.values.size(); ++i) states.push_back(state_of(page, i, numbers));
  return states;
}

ValueState ValueStates::state(std::size_t at, std::size_t field) const {
  const Page& page = pages_[at];
  return state_of(page, field, page.desk ? page.desk->model().numbers() : std::vector<int>());
}

ValueMark ValueStates::mark(std::size_t page, std::size_t field) const {
  return mark_of(fields(page)[field], state(page, field));
}

ValueMark ValueStates::mark_of(const FieldInfo& field, const ValueState& state) {
  ValueMark mark;
  if (!state.page) return mark;
  const bool known = state.chip.how != Known::nothing;
  if (known) mark.chip = state.chip.number;
  mark.differs_from_chip = known && field.held_by_chip(*state.page) != state.chip.number;
  mark.unsent =
      field.sendable() && !field.saved_as_loaded && (mark.differs_from_chip || (!known && state.touched));
  mark.differs_from_file = state.file && field.kept_in_file() &&
                           field.held_by_file(*state.page) != field.held_by_file(*state.file);
  if (mark.any()) mark.others = other_values(field, state);
  return mark;
}

std::string ValueStates::other_values(const FieldInfo& field, const ValueState& state) {
  std::string text;
  if (state.chip.how != Known::nothing) text = "chip " + field.text(state.chip.number);
  if (state.file) text += (text.empty() ? "file " : ", file ") + field.text(*state.file);
  return text;
}

bool ValueStates::unsent_or_unsaved(std::size_t page) const {
  const std::vector<ValueState> all = states(page);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const ValueMark mark = mark_of(fields(page)[i], all[i]);
    if (mark.unsent || mark.differs_from_file) return true;
  }
  return false;
}

void ValueStates::tell_changed() {
  if (std::exchange(change_posted_, true)) return;
  scheduler_.post([this, alive = alive_] {
    if (!*alive) return;
    change_posted_ = false;
    show_marks();
    for (const auto& told : change_listeners_) told();
  });
}

void ValueStates::show_marks() {
  for (std::size_t at = 0; at < pages_.size(); ++at)
    if (pages_[at].desk) show_marks(pages_[at], states(at));
}

void ValueStates::show_marks(Page& page, const std::vector<ValueState>& states) {
  std::vector<ValueMark> marks;
  marks.reserve(states.size());
  for (std::size_t i = 0; i < states.size(); ++i)
    marks.push_back(mark_of(page.model->fields()[i], states[i]));
  if (marks == page.shown) return;
  page.shown = std::move(marks);
  page.desk->show_marks(page.shown);
}

}  // namespace qv5123
