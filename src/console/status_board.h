#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "link/register_write.h"
#include "link/sender.h"

namespace qv5123 {

/// How long a message of the status bar counts.
enum class StatusRank {
  text,      ///< tells where one is, such as the line of a page that was chosen
  progress,  ///< how far something is; replaced many times, so it is not kept in the history
  outcome,   ///< what came of an action: ends the failures of its kind
  failure    ///< what did not work: stays until it is read or its kind has an outcome
};

struct StatusMessage {
  StatusRank rank = StatusRank::text;
  std::string kind;  ///< what it is about: a page's name, "port", "download"...
  std::string text;  ///< UTF-8
  std::chrono::system_clock::time_point time;
  unsigned times = 1;  ///< how often it was said in a row; `time` is the last one's
};

/// What the status bar says: the latest message, beside it the failures that nobody has read yet, and
/// everything that was said before with its time.
class StatusBoard {
 public:
  using Clock = std::function<std::chrono::system_clock::time_point()>;
  /// Older messages than this many are forgotten.
  static constexpr std::size_t kHistory = 500;

  explicit StatusBoard(Clock clock = std::chrono::system_clock::now) : clock_(std::move(clock)) {}

  /// Says something. An empty text only takes the latest message away.
  void show(StatusRank rank, std::string kind, std::string text);
  /// Puts into the history what is shown in a place of its own.
  void remember(StatusRank rank, std::string kind, std::string text);
  /// The user has seen the failures.
  void read() { failures_.clear(); }

  /// The latest message that is no failure; may be empty.
  const std::string& latest() const { return latest_.text; }
  /// The failures that stand, one of each kind, the last one last.
  const std::vector<StatusMessage>& failures() const { return failures_; }
  /// Everything that was said or is to be remembered, the oldest first.
  const std::deque<StatusMessage>& history() const { return history_; }
  /// How many messages were said before the oldest of them.
  std::size_t forgotten() const { return forgotten_; }

 private:
  void keep(const StatusMessage& message);

  Clock clock_;
  StatusMessage latest_;
  std::vector<StatusMessage> failures_;
  std::deque<StatusMessage> history_;
  std::size_t forgotten_ = 0;
};

/// What an action without a text of its own says: "Saturation: 1 register sent". What one register takes in
/// several writes is counted once.
std::string sent_text(const std::string& what, const Traffic& sent);
/// Whether all of a job left.
bool left_whole(const JobResult& result);
/// The same when not all of it did: "Saturation: not sent, the port is not open".
std::string not_sent_text(const std::string& what, const JobResult& result);

/// What the main form's own messages are about; a page's are about the page by its name.
inline constexpr const char* kAboutForm = "main form";
inline constexpr const char* kAboutFiles = "setting file";
inline constexpr const char* kAboutDownload = "download";
inline constexpr const char* kAboutPort = "port";
inline constexpr const char* kAboutJournal = "crash journal";

}  // namespace qv5123
