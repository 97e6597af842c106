#include "app/ui/named_host.h"

#include "app/ui/qv5123_view.h"

namespace qv5123 {

CommandLink& NamedHost::link() {
  return form_.link();
}

CQV5123Doc& NamedHost::document() {
  return form_.document();
}

Prompts& NamedHost::prompts() {
  return form_.prompts();
}

Background& NamedHost::background() {
  return form_.background();
}

void NamedHost::show_status(const std::string& text) {
  form_.say(StatusRank::outcome, name_, text);
}

void NamedHost::show_failure(const std::string& text) {
  form_.say(StatusRank::failure, name_, text);
}

void NamedHost::show_status_of(const std::string& kind, const std::string& text) {
  form_.say(StatusRank::outcome, kind, text);
}

void NamedHost::show_failure_of(const std::string& kind, const std::string& text) {
  form_.say(StatusRank::failure, kind, text);
}

void NamedHost::send_and_tell(const std::string& what, Traffic traffic,
                              std::shared_ptr<const WriteNote> note) {
  form_.send_and_tell_of(name_, what, std::move(traffic), std::move(note));
}

void NamedHost::show_progress(std::optional<int> percent) {
  form_.show_progress(percent);
}

void NamedHost::append_console(const std::string& text) {
  form_.append_console(text);
}

Task<bool> NamedHost::write_user_data_file() {
  return form_.write_user_data_file();
}

Task<bool> NamedHost::save_everything() {
  return form_.save_everything();
}

Task<> NamedHost::reload_user_data_file() {
  return form_.reload_user_data_file();
}

void NamedHost::set_busy(bool busy) {
  form_.set_busy(busy);
}

void NamedHost::draft_saved() {
  form_.draft_saved();
}

}  // namespace qv5123
