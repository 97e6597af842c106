#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "console/page_host.h"
#include "console/prompts.h"

namespace qv5123 {

/// The user who is not there. Nothing is ever asked: questions are answered with Cancel unless told
/// otherwise, choosers with the file that was named before, and what had to be acknowledged or answered is
/// kept.
class HeadlessPrompts final : public Prompts {
 public:
  explicit HeadlessPrompts(std::filesystem::path file = {}) : file_(std::move(file)) {}

  Task<> message(Message message) override;
  Task<Answer> ask(Question question) override;
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice choice) override;
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice choice) override;

  /// What questions are answered with.
  void answer(Answer answer) { answer_ = answer; }
  /// The last message or question; empty while there was none.
  const std::string& last_message() const { return last_message_; }
  /// Whether anything was asked.
  bool asked() const { return asked_; }

 private:
  std::filesystem::path file_;
  std::string last_message_;
  Answer answer_ = Answer::cancel;
  bool asked_ = false;
};

/// "FONT ..." of what a transfer says on the console, "\r\n< FONT ... >\r\n".
std::string bare_words(const std::string& text);

/// Runs a desk that nobody looks at, and keeps what failed.
class UnattendedHost final : public DeskHost {
 public:
  using Progress = std::function<void(std::optional<int> percent)>;
  using Console = std::function<void(const std::string& text)>;
  /// Without `console` nobody reads what is for it.
  UnattendedHost(CommandLink& link, Progress progress, Console console = {})
      : link_(link), progress_(std::move(progress)), console_(std::move(console)) {}

  CommandLink& link() override { return link_; }
  void show_status(const std::string&) override {}
  void show_failure(const std::string& text) override { last_failure_ = text; }
  void append_console(const std::string& text) override {
    if (console_) console_(text);
  }
  void show_progress(std::optional<int> percent) override { progress_(percent); }
  void set_busy(bool busy) override {
    if (!busy) progress_(std::nullopt);
  }

  /// Empty while all went well.
  const std::string& last_failure() const { return last_failure_; }
  void forget_failure() { last_failure_.clear(); }
  /// What is under way ends where it can be ended.
  void stop() { stopped_ = true; }
  void go_on() { stopped_ = false; }
  bool stopped() const { return stopped_; }

 private:
  CommandLink& link_;
  const Progress progress_;
  const Console console_;
  std::string last_failure_;
  bool stopped_ = false;
};

}  // namespace qv5123
