#include "provision/unattended.h"

namespace qv5123 {

Task<> HeadlessPrompts::message(Message message) {
  last_message_ = std::move(message.text);
  co_return;
}

Task<Answer> HeadlessPrompts::ask(Question question) {
  last_message_ = std::move(question.text);
  asked_ = true;
  co_return answer_;
}

Task<std::optional<std::filesystem::path>> HeadlessPrompts::choose_open(FileChoice) {
  if (file_.empty()) co_return std::nullopt;
  co_return file_;
}

Task<std::optional<std::filesystem::path>> HeadlessPrompts::choose_save(FileChoice) {
  co_return std::nullopt;
}

std::string bare_words(const std::string& text) {
  const std::size_t first = text.find_first_not_of("\r\n< ");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of("\r\n> ") + 1 - first);
}

}  // namespace qv5123
