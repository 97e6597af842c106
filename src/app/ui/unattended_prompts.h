#pragma once

#include <functional>

#include "console/prompts.h"

namespace qv5123 {

/// Nobody sits before the window: messages are passed on, every question and every chooser is cancelled.
class UnattendedPrompts final : public Prompts {
 public:
  explicit UnattendedPrompts(std::function<void(const std::string&)> report) : report_(std::move(report)) {}

  Task<> message(Message message) override {
    report_(message.text);
    co_return;
  }
  Task<Answer> ask(Question) override { co_return Answer::cancel; }
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice) override { co_return std::nullopt; }
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice) override { co_return std::nullopt; }

 private:
  std::function<void(const std::string&)> report_;
};

}  // namespace qv5123
