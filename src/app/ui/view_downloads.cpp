// The main form's downloads, and what is read back after them.
#include "app/ui/control_column.h"
#include "app/ui/qv5123_view.h"
#include "base/ui/qt_text.h"

namespace qv5123 {
namespace {

constexpr const char* kWholeImage = "System";
constexpr const char* kRegisterFile = "Register file";

}  // namespace

void CQV5123View::connect_downloads() {
  using C = ControlColumn;
  const auto begin = [this](TransferKind kind) { return [this, kind] { flows_.spawn(transfer(kind)); }; };
  connect(column_, &C::download_firmware, this, begin(TransferKind::firmware));
  connect(column_, &C::download_font, this, begin(TransferKind::font));
  connect(column_, &C::send_user_data, this, begin(TransferKind::user_data));
  connect(column_, &C::cancel_transfer, this, &CQV5123View::cancel_transfer);
  link_.tell_of_waiting([this] {
    if (transfer_.waiting() && !asking_about_waiting_) flows_.spawn(ask_about_waiting());
  });
}

TransferView CQV5123View::transfer_view() {
  TransferView view;
  view.set_progress = [this](int percent) { column_->set_progress(percent); };
  view.show_progress_text = [this](const std::string& text) {
    say(StatusRank::progress, kAboutDownload, text);
  };
  view.append_console = [this](const std::string& text) { append_console(text); };
  view.tell = [this](bool failed, const std::string& text) {
    say(failed ? StatusRank::failure : StatusRank::outcome, kAboutDownload, text);
  };
  view.keeps_waiting = true;
  return view;
}

Task<> CQV5123View::transfer(TransferKind kind) {
  const bool free = !transfer_.waiting() || co_await may_interrupt_waiting();
  if (!free) co_return;
  ++transfers_;
  show_transferring();
  const TransferEnd end = co_await transfer_.run(kind);
  --transfers_;
  if (kind == TransferKind::user_data && end == TransferEnd::sent) {
    values_.image_sent(document_.user_data);
    image_check_.sent(document_.user_data);
    // What is still being read back was sent before.
    image_flow_.cancel();
    if (values_.verifies_saves())
      image_flow_.start(check_image());
    else
      tell_checked(kWholeImage, {}, {}, {});
  }
  if (kind == TransferKind::user_data) show_image();
  show_transferring();
}

Task<> CQV5123View::check_image() {
  tell_checked(kWholeImage, "Verifying...", {}, {});
  co_await image_check_.verify();
  tell_image_checked();
}

void CQV5123View::repair_image() {
  if (!image_flow_.running()) image_flow_.start(run_repair_image());
}

Task<> CQV5123View::run_repair_image() {
  constexpr int kMostRepairs = 3;
  co_await image_check_.repair(kMostRepairs);
  tell_image_checked();
}

void CQV5123View::tell_image_checked() {
  tell_checked(kWholeImage, image_check_.text(), image_check_.differences(),
               image_check_.can_repair() ? std::function<void()>([this] { repair_image(); }) : nullptr);
}

void CQV5123View::tell_checked(const char* about, const std::string& text,
                               const std::vector<std::string>& differences,
                               const std::function<void()>& again) {
  QStringList details;
  for (const std::string& difference : differences) details << to_qt(difference);
  emit checked(about, to_qt(text), details, again);
}

void CQV5123View::check_registers(RegisterDesk& desk) {
  RegisterCheck::Listener listener;
  listener.wanted = [this] { return values_.verifies_saves(); };
  listener.tell = [this](const std::string& text, const std::vector<std::string>& differences,
                         const std::function<void()>& again) {
    tell_checked(kRegisterFile, text, differences, again);
  };
  desk.check().tell(std::move(listener));
}

void CQV5123View::show_transferring() {
  column_->set_transferring(transfers_ > 0 || transfer_.waiting());
}

void CQV5123View::cancel_transfer() {
  if (transfer_.waiting()) return flows_.spawn(end_waiting());
  transfer_.cancel();
}

Task<> CQV5123View::end_waiting() {
  ++transfers_;
  co_await transfer_.end_waiting();
  --transfers_;
  show_transferring();
}

Task<> CQV5123View::ask_about_waiting() {
  co_await may_interrupt_waiting();
}

Task<bool> CQV5123View::may_interrupt_waiting() {
  if (asking_about_waiting_) co_return false;
  asking_about_waiting_ = true;
  Question question;
  question.text =
      transfer_.waiting_text() +
      ". A command would become a part of it.\n\nEnd the chip's waiting first?\n\n\"No\" if the chip "
      "was switched off meanwhile, or is another one.";
  question.buttons = Question::Buttons::yes_no_cancel;
  const Answer answer = co_await prompts_.ask(std::move(question));
  asking_about_waiting_ = false;
  if (answer == Answer::yes) co_await end_waiting();
  if (answer == Answer::no) transfer_.forget_waiting();
  show_transferring();
  if (transfer_.waiting())
    say(StatusRank::failure, kAboutDownload, transfer_.waiting_text() + ". Commands wait.");
  co_return !transfer_.waiting();
}

}  // namespace qv5123
