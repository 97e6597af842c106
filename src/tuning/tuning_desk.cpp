#include "tuning/tuning_desk.h"

#include "tuning/page_flows.h"

namespace qv5123 {

void TuningDesk::open_with_image() {
  model_.load(image_);
  filled_ = image_.loaded();
}

void TuningDesk::reload() {
  model_.load(image_);
  values_loaded();
  view_->show_values();
  mark_filled(image_.loaded());
}

void TuningDesk::mark_filled(bool filled) {
  filled_ = filled;
  show_unread();
}

std::string TuningDesk::unread() const {
  return filled_ ? "" : "not read yet";
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
  if (wanted) co_await std::move(save);
}

void TuningDesk::load_file() {
  reload();
  host_.show_status(model_.texts().loaded_file);
}

Task<bool> TuningDesk::load_from_chip() {
  PageLoad load{model_.texts().trigger, model_.texts().failed, model_.texts().loaded,
                [this](std::string_view reply) {
                  view_->take_typed();
                  const bool taken = model_.take_reply(reply);
                  if (!taken) return false;
                  taken_reply();
                  values_loaded();
                  view_->show_values();
                  mark_filled(true);
                  return true;
                }};
  co_return co_await qv5123::load_from_chip(host_, std::move(load));
}

Task<bool> TuningDesk::send_save(FullSave save, std::string done) {
  LongTraffic on_chip;
  on_chip.traffic = std::move(save.traffic);
  on_chip.settling = save.settling;
  on_chip.done = std::move(done);
  const bool saved = co_await send_with_progress(host_, std::move(on_chip));
  co_await after_save();
  co_return saved;
}

}  // namespace qv5123
