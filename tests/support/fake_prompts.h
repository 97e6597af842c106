#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "console/prompts.h"

namespace qv5123::test {

/// A user who answers from prepared queues, at once unless `hesitates` is set. With nothing prepared every
/// question and chooser is cancelled.
class FakePrompts : public Prompts {
 public:
  std::deque<Answer> answers;
  std::deque<std::optional<std::filesystem::path>> paths;  ///< for both choosers

  std::vector<Message> messages;
  std::vector<Question> questions;
  std::vector<FileChoice> opens;
  std::vector<FileChoice> saves;

  /// While true every prompt stays open until answer_now().
  bool hesitates = false;
  /// Called when a prompt opens.
  std::function<void()> on_prompt;

  Task<> message(Message message) override {
    messages.push_back(std::move(message));
    co_await opened();
  }
  Task<Answer> ask(Question question) override {
    questions.push_back(std::move(question));
    co_await opened();
    co_return take(answers, Answer::cancel);
  }
  Task<std::optional<std::filesystem::path>> choose_open(FileChoice choice) override {
    opens.push_back(std::move(choice));
    co_await opened();
    co_return take(paths, std::nullopt);
  }
  Task<std::optional<std::filesystem::path>> choose_save(FileChoice choice) override {
    saves.push_back(std::move(choice));
    co_await opened();
    co_return take(paths, std::nullopt);
  }

  /// The user answers the prompt that opened last.
  void answer_now() {
    const Resolver<bool> open = std::exchange(open_, {});
    open.resolve(true);
  }

 private:
  Pending<bool> opened() {
    const Resolver<bool> open;
    open_ = open;
    if (on_prompt) on_prompt();
    if (!hesitates) open.resolve(true);
    return open.pending();
  }
  template <class T>
  static T take(std::deque<T>& queue, std::type_identity_t<T> otherwise) {
    if (queue.empty()) return otherwise;
    T first = std::move(queue.front());
    queue.pop_front();
    return first;
  }

  Resolver<bool> open_;
};

}  // namespace qv5123::test
