#pragma once

#include <memory>
#include <string>
#include <vector>

namespace qv5123::test {

/// A serial line between a program under test and a simulated board, one at a time.
class BoardCable {
 public:
  BoardCable();
  ~BoardCable();
  BoardCable(const BoardCable&) = delete;
  BoardCable& operator=(const BoardCable&) = delete;

  /// What the program calls its end, in the test's folder.
  static std::string port();
  /// The options that put qv5123sim at the other end.
  static std::vector<std::string> simulator_options();

 private:
  struct Ends;
  const std::unique_ptr<Ends> ends_;
};

}  // namespace qv5123::test
