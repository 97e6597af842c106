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

/// Runs a desk without a window. Commands say by themselves what came of them.
class HeadlessHost final : public DeskHost {
 public:
  explicit HeadlessHost(Chip& chip) : chip_(chip) {}

  CommandLink& link() override { return chip_.link(); }
  void show_status(const std::string&) override {}
  void append_console(const std::string& text) override { chip_.out().warning(text); }
  void show_failure(const std::string& text) override { last_failure_ = text; }
  /// Empty while all went well.
  const std::string& last_failure() const { return last_failure_; }
  void show_progress(std::optional<int> percent) override;
  /// One flow at a time runs here.
  void set_busy(bool busy) override;

 private:
  Chip& chip_;
  std::string last_failure_;
};

}  // namespace qv5123
