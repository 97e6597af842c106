#pragma once

#include "cli/chip.h"
#include "console/page_host.h"

namespace qv5123 {

/// The user who is not there. Nothing is ever asked: questions are answered with Cancel unless told
/// otherwise, choosers with the file that the command line named, and what had to be acknowledged or answered
/// is kept.
class HeadlessPrompts final : public Prompts {
 public:
  explicit HeadlessPrompts(std::filesystem::path file = {}) : file_(std::move(file)) {}

  Task<> message(Message message) override;
  Task<Answer> ask(Question question) override;
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice choice) override;
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice choice) override;

  /// What questions are answered with.
  void answer(Answer answer) { answer_ = answer; }
  /// The last message; empty while there was none.
  const std::string& last_message() const { return last_message_; }

 private:
  std::filesystem::path file_;
  std::string last_message_;
  Answer answer_ = Answer::cancel;
};

/// The main form as the pages' flows see it, without a window. No file is written behind the user's back:
/// those of the command line are all there are.
class HeadlessHost final : public PageHost {
 public:
  explicit HeadlessHost(Chip& chip) : chip_(chip) {}

  CommandLink& link() override { return chip_.link(); }
  CQV5123Doc& document() override { return document_; }
  Prompts& prompts() override { return prompts_; }
  Background& background() override { return chip_.background(); }
  /// Commands say by themselves what came of them.
  void show_status(const std::string& text) override;
  const std::string& last_status() const { return last_status_; }
  void show_progress(std::optional<int> percent) override;
  void append_console(const std::string& text) override;
  Task<bool> write_user_data_file() override { co_return true; }
  Task<bool> save_everything() override { co_return true; }
  Task<> reload_user_data_file() override { co_return; }
  /// One flow at a time runs here.
  void set_busy(bool busy) override;

 private:
  Chip& chip_;
  CQV5123Doc document_;
  HeadlessPrompts prompts_;
  std::string last_status_;
};

}  // namespace qv5123
