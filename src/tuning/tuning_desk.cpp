#include "tuning/tuning_desk.h"

#include <algorithm>
#include <set>

#include "tuning/brackets.h"
#include "tuning/page_flows.h"
#include "tuning/tuning_pages.h"

namespace qv5123 {
namespace {

/// How often "Send these again" does so.
constexpr int kMostRepairs = 3;

Traffic without_brackets(Traffic traffic) {
  std::erase_if(traffic, [](const Batch& batch) {
    return batch.size() == 1 &&
           (batch[0].address == reg::kKeepBracket || batch[0].address == reg::kSaveBracket);
  });
  return traffic;
}

}  // namespace

TuningDesk::~TuningDesk() {
  if (watcher_) watcher_->closed(*this);
}

void TuningDesk::watch(DeskWatcher& watcher) {
  watcher_ = &watcher;
  // A page that reads the chip as it opens has just begun to.
  asked_at_ = watcher.jobs();
  watcher.opened(*this);
}

TuningDesk::Changing::Changing(TuningDesk& desk, DeskChange::Kind kind, std::string what, unsigned drag)
    : desk_(desk), change_{kind, std::move(what), {}, drag} {
  if (desk_.watcher_) change_.before = desk_.model_.keep();
}

TuningDesk::Changing::~Changing() {
  if (change_.before.has_value()) desk_.tell(change_);
}

void TuningDesk::tell(const DeskChange& change) {
  if (watcher_ && !model_.holds(change.before)) watcher_->changed(*this, change);
}

void TuningDesk::type(std::size_t field, int number) {
  const Changing change(*this, DeskChange::Kind::typed, model_.fields()[field].caption.caption());
  model_.set_number(field, number);
}

void TuningDesk::restore(const std::any& kept) {
  model_.restore(kept);
  values_loaded();
  view_->show_values();
  if (watcher_) watcher_->restored(*this);
}

void TuningDesk::take_values(std::string what, const std::vector<WriteNote::Value>& values) {
  view_->take_typed();
  const Changing change(*this, DeskChange::Kind::taken_over, std::move(what));
  for (const WriteNote::Value& value : values) model_.set_number(value.field, value.number);
  values_loaded();
  view_->show_values();
}

Task<> TuningDesk::bring_values(std::string what, std::vector<std::size_t> fields, bool keep) {
  {
    const Changing change(*this, DeskChange::Kind::computed, what);
    limit(fields);
  }
  view_->show_values();
  if (!keep)
    send_noted(what, own_traffic(fields), own_values(fields));
  else
    co_await send_kept(std::move(what), std::move(fields));
}

Task<bool> TuningDesk::send_kept(std::string what, std::vector<std::size_t> fields) {
  co_return co_await send_with_progress(host_, keeping(fields, what + ": sent for the chip to keep"));
}

/// In the brackets of the full save, and with the time that the chip then takes.
LongTraffic TuningDesk::keeping(const std::vector<std::size_t>& fields, std::string done) {
  LongTraffic sending;
  sending.traffic = bracketed(values_traffic(fields));
  std::vector<WriteNote::Value> values = own_values(fields);
  expect(values);
  sending.note = note(kFullSave, std::move(values));
  sending.settling = settling();
  sending.done = std::move(done);
  return sending;
}

Traffic TuningDesk::own_traffic(const std::vector<std::size_t>& fields) const {
  Traffic traffic;
  for (const int control : controls_of(fields)) append(traffic, control_traffic(control));
  return traffic;
}

std::vector<WriteNote::Value> TuningDesk::own_values(const std::vector<std::size_t>& fields) const {
  std::vector<WriteNote::Value> values;
  for (const int control : controls_of(fields)) {
    const std::vector<WriteNote::Value> more = control_values(control);
    values.insert(values.end(), more.begin(), more.end());
  }
  return values;
}

std::set<int> TuningDesk::controls_of(const std::vector<std::size_t>& fields) const {
  std::set<int> controls;
  for (const std::size_t field : fields) {
    const int control = model_.fields()[field].sent_by;
    if (control != Field::kNowhere) controls.insert(control);
  }
  return controls;
}

void TuningDesk::open_with_image() {
  model_.load(image_);
  filled_ = image_.loaded();
}

void TuningDesk::reload() {
  const Changing change(*this, DeskChange::Kind::from_file, "Load <- File");
  model_.load(image_);
  values_loaded();
  view_->show_values();
  mark_filled(image_.loaded());
}

void TuningDesk::mark_filled(bool filled) {
  filled_ = filled;
  older_than_chip_ = false;
  show_unread();
}

std::string TuningDesk::unread() const {
  if (!filled_) return "not read yet";
  return older_than_chip_ ? kOlderThanChip : "";
}

void TuningDesk::chip_was_reset() {
  older_than_chip_ = true;
  show_unread();
}

std::string TuningDesk::unread_saved() const {
  return filled_ ? "" : "The page was neither read from the chip nor filled from a setting file.";
}

void TuningDesk::tell_unread(std::function<void(const std::string&)> told) {
  unread_told_ = std::move(told);
  show_unread();
}

Task<bool> TuningDesk::agreed(Prompts& prompts, std::string text) {
  if (text.empty() || agreed_texts_.count(text) > 0) co_return true;
  Question question = careful_question(text + "\n\nGo on all the same?");
  const Answer answer = co_await prompts.ask(std::move(question));
  if (answer == Answer::yes) agreed_texts_.insert(std::move(text));
  co_return answer == Answer::yes;
}

Task<> TuningDesk::run_save(Prompts& prompts, Task<> save) {
  const bool wanted = co_await agreed(prompts, unread_saved());
  if (!wanted) co_return;
  verify_.cancel();
  if (watcher_) watcher_->saves(*this);
  saved_whole_ = false;
  co_await std::move(save);
  if (saved_whole_ && watcher_ && watcher_->verifies_saves()) verify_.start(run_verify());
}

void TuningDesk::load_file() {
  reload();
  host_.show_status(model_.texts().loaded_file);
}

bool TuningDesk::take_reply(std::string_view reply) {
  view_->take_typed();
  const Changing change(*this, DeskChange::Kind::from_chip, "Load <- ISP");
  if (!model_.take_reply(reply)) return false;
  if (watcher_) watcher_->reported(*this, reply, asked_at_);
  taken_reply();
  values_loaded();
  view_->show_values();
  mark_filled(true);
  return true;
}

Task<bool> TuningDesk::load_from_chip() {
  if (watcher_) asked_at_ = watcher_->jobs();
  PageLoad load{model_.texts().trigger, model_.texts().failed, model_.texts().loaded,
                [this](std::string_view reply) { return take_reply(reply); }};
  co_return co_await qv5123::load_from_chip(host_, std::move(load));
}

FullSave TuningDesk::full_save() {
  FullSave save = make_save();
  save.values = save_values();
  return save;
}

std::vector<WriteNote::Value> TuningDesk::control_values(int control) const {
  std::vector<WriteNote::Value> values;
  const std::vector<int> numbers = model_.numbers();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const FieldInfo& field = model_.fields()[i];
    if (field.sent_by == control) values.push_back({i, field.held_by_chip(numbers[i])});
  }
  return values;
}

std::vector<WriteNote::Value> TuningDesk::save_values() const {
  std::vector<WriteNote::Value> values;
  const std::vector<int> numbers = model_.numbers();
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const FieldInfo& field = model_.fields()[i];
    if (field.saved) values.push_back({i, field.held_by_chip(numbers[i])});
  }
  return values;
}

std::shared_ptr<const WriteNote> TuningDesk::note(std::string control,
                                                  std::vector<WriteNote::Value> values) const {
  return std::make_shared<WriteNote>(WriteNote{model_.texts().name, std::move(control), std::move(values)});
}

void TuningDesk::expect(const std::vector<WriteNote::Value>& values) {
  for (const WriteNote::Value& value : values)
    for (WriteNote::Value& sent : sent_)
      if (sent.field == value.field) sent.number = value.number;
}

void TuningDesk::send_noted(const std::string& what, Traffic traffic, std::vector<WriteNote::Value> values) {
  expect(values);
  host_.send_and_tell(what, std::move(traffic), note(what, std::move(values)));
}

void TuningDesk::send_control(const std::string& what, int control) {
  send_noted(what, control_traffic(control), control_values(control));
}

Task<bool> TuningDesk::send_save(FullSave save, std::string done) {
  LongTraffic on_chip;
  on_chip.traffic = std::move(save.traffic);
  on_chip.settling = save.settling;
  on_chip.done = std::move(done);
  on_chip.note = note(kFullSave, save.values);
  saved_ = model_.keep();
  sent_ = std::move(save.values);
  saved_whole_ = false;
  const bool saved = co_await send_with_progress(host_, std::move(on_chip));
  co_await after_save();
  saved_whole_ = saved;
  if (saved && older_than_chip_) {
    older_than_chip_ = false;
    show_unread();
  }
  co_return saved;
}

void TuningDesk::start_save(Prompts& prompts, Task<> save) {
  if (save_.running()) return;
  save_.start(run_save(prompts, std::move(save)));
}

Task<> TuningDesk::run_verify() {
  co_await verify_save();
}

Task<Verification> TuningDesk::verify_save(std::chrono::milliseconds patience) {
  const std::uint64_t asked_at = watcher_ ? watcher_->jobs() : 0;
  if (watcher_) watcher_->verifies(*this);
  const std::unique_ptr<TuningModel> chip = make_model(model_.texts().name);
  Verification found = co_await verify_page(link(), *chip, sent_, patience);
  if (watcher_) watcher_->verified(*this, sent_, found, asked_at);
  co_return found;
}

Task<Verification> TuningDesk::repair_save(Verification found, int times,
                                           std::chrono::milliseconds patience) {
  for (; times > 0 && !found.to_repair().empty(); --times) {
    const bool sent = co_await send_again(found.to_repair());
    if (!sent) break;
    found = co_await verify_save(patience);
  }
  co_return found;
}

void TuningDesk::start_repair(Verification found) {
  if (save_.running()) return;
  verify_.cancel();
  save_.start(run_repair(std::move(found)));
}

Task<> TuningDesk::run_repair(Verification found) {
  co_await repair_save(std::move(found), kMostRepairs);
}

/// As they were saved, whatever the page holds by now.
Task<bool> TuningDesk::send_again(std::vector<std::size_t> fields) {
  const std::any now = model_.keep();
  model_.restore(saved_);
  // Single ones may have been sent since.
  for (const WriteNote::Value& sent : sent_) {
    const FieldInfo& field = model_.fields()[sent.field];
    if (field.held_by_chip(model_.numbers()[sent.field]) != sent.number)
      model_.set_number(sent.field, sent.number);
  }
  LongTraffic again = keeping(fields, std::string());
  model_.restore(now);
  co_return co_await send_with_progress(host_, std::move(again));
}

Traffic TuningDesk::values_traffic(const std::vector<std::size_t>& fields) const {
  Traffic traffic;
  for (const int control : controls_of(fields)) append(traffic, without_brackets(control_traffic(control)));
  return traffic;
}

Traffic TuningDesk::bracketed(Traffic body) const {
  return saved(std::move(body));
}

}  // namespace qv5123
