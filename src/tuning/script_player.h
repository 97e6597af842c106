#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/task.h"
#include "console/page_host.h"

namespace qv5123 {

/// "Register File Load" without its window: lets a file be chosen and plays it, a line each 200 ms.
class ScriptPlayer {
 public:
  class View {
   public:
    virtual ~View() = default;
    /// Whether a press would stop it.
    virtual void show_playing(bool) {}
  };
  explicit ScriptPlayer(PageHost& host) : host_(host) {}
  void attach(View& view) { view_ = &view; }

  /// Starts, or stops what plays. Nothing while the file is being chosen.
  void press();
  /// Ends without a word what is under way.
  void stop() { flow_.cancel(); }

 private:
  class Playing;

  Task<> run();
  Task<std::optional<std::string>> read(std::filesystem::path path);
  /// How many lines were sent; 0 where that is not worth a word.
  Task<std::size_t> play(std::string text);

  PageHost& host_;
  View nobody_;
  View* view_ = &nobody_;
  bool playing_ = false;
  Flow flow_;
};

}  // namespace qv5123
