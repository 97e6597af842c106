#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "base/task.h"

namespace qv5123 {

/// A message that the user must acknowledge.
struct Message {
  enum class Icon { information, warning, stop };
  std::string text;
  std::string title = "QV5123";
  Icon icon = Icon::information;
};

enum class Answer { yes, no, cancel };  // OK counts as yes

/// A question with a fixed set of answers.
struct Question {
  enum class Buttons { ok_cancel, yes_no, yes_no_cancel };
  std::string text;
  std::string title = "QV5123";
  Buttons buttons = Buttons::ok_cancel;
  /// What the Enter key answers; without it, what stands first.
  std::optional<Answer> preferred = {};
  /// What the buttons say where "Yes", "No" and "Cancel" would say too little.
  std::string yes_text = {};
  std::string no_text = {};
  std::string cancel_text = {};
  /// Stands below the text, in smaller letters.
  std::string detail = {};
};

/// A message that something is wrong.
inline Message warning(std::string text) {
  Message message;
  message.text = std::move(text);
  message.icon = Message::Icon::warning;
  return message;
}

/// A question before something that cannot be taken back: Enter answers No.
inline Question careful_question(std::string text, std::string title = "QV5123") {
  Question question;
  question.text = std::move(text);
  question.title = std::move(title);
  question.buttons = Question::Buttons::yes_no;
  question.preferred = Answer::no;
  return question;
}

/// What a file chooser offers.
struct FileChoice {
  /// Pairs of name and pattern, as "Setting Files (*.dat)|*.dat|All Files (*.*)|*.*||".
  std::string filter;
  std::string default_extension;  ///< without the point; added to a name typed without one
  std::string initial_name;       ///< may be empty
  std::string title = {};         ///< what the file is for; empty for the system's own word
  /// Choosers of the same kind begin in the folder that the last of them ended in. Empty: the current folder.
  std::string kind = {};
};

/// The user, asked. Every call resumes when the user has answered; nothing blocks meanwhile. Texts are plain:
/// no markup in them is interpreted.
class Prompts {
 public:
  virtual ~Prompts() = default;
  virtual Task<> message(Message message) = 0;
  virtual Task<Answer> ask(Question question) = 0;
  /// An existing file to read; nothing when the user cancels.
  virtual Task<std::optional<std::filesystem::path>> choose_open(FileChoice choice) = 0;
  /// A file to write, asked before an existing one is overwritten; nothing when the user cancels.
  virtual Task<std::optional<std::filesystem::path>> choose_save(FileChoice choice) = 0;
};

}  // namespace qv5123
