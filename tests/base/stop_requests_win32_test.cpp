#include "base/stop_requests.h"

#include <gtest/gtest.h>
#include <io.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <optional>

namespace qv5123 {
namespace {

using std::chrono::milliseconds;
using Wait = StopRequests::Wait;

/// A console of the test's own, so that nobody else hears what is typed there. Its standard streams stay as
/// they were.
class OwnConsole {
 public:
  OwnConsole() {
    FreeConsole();
    exists_ = AllocConsole() != FALSE;
    // Who started the tests may have had it ignored.
    SetConsoleCtrlHandler(nullptr, FALSE);
  }
  ~OwnConsole() {
    FreeConsole();
    for (std::size_t i = 0; i < kStreams.size(); ++i) SetStdHandle(kStreams[i], before_[i]);
  }
  OwnConsole(const OwnConsole&) = delete;
  OwnConsole& operator=(const OwnConsole&) = delete;
  bool exists() const { return exists_; }

 private:
  static constexpr std::array<DWORD, 3> kStreams{STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  const std::array<HANDLE, 3> before_{GetStdHandle(kStreams[0]), GetStdHandle(kStreams[1]),
                                      GetStdHandle(kStreams[2])};
  bool exists_ = false;
};

TEST(StopRequests, AreTheConsolesCtrlCsAndCtrlBreaksOneByOne) {
  constexpr milliseconds kLongest{10'000};
  if (_isatty(_fileno(stdout))) GTEST_SKIP() << "somebody looks on, whose console this would take away";
  const OwnConsole console;
  if (!console.exists()) GTEST_SKIP() << "this system gives no console";
  StopRequests requests;
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0));
    EXPECT_EQ(requests.wait(kLongest), Wait::request) << "and it did not end the program";
  }
  // Wine sends no Ctrl-Break.
  if (GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, 0)) {
    EXPECT_EQ(requests.wait(kLongest), Wait::request) << "and it did not end the program";
  }
  EXPECT_EQ(requests.wait(milliseconds(1)), Wait::time_over);
  requests.wake();
  EXPECT_EQ(requests.wait(kLongest), Wait::woken);
}

}  // namespace
}  // namespace qv5123
