#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

fs::path program() {
  if (const char* folder = std::getenv("QV5123_BIN")) return fs::path(folder) / "qv5123sim";
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "bin" / "qv5123sim";
}

/// Reads from `fd` until `text` holds `wanted`, the end, or ten seconds have passed.
void read_until(int fd, std::string& text, std::string_view wanted) {
  const auto deadline = Clock::now() + 10s;
  while (text.find(wanted) == std::string::npos) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd ready{fd, POLLIN, 0};
    if (left.count() <= 0 || ::poll(&ready, 1, static_cast<int>(left.count())) <= 0) return;
    char buffer[4096];
    const ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count <= 0) return;
    text.append(buffer, static_cast<std::size_t>(count));
  }
}

/// The program, started with arguments; what it prints can be read, its end awaited.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments) {
    int out[2], err[2];
    if (::pipe(out) != 0 || ::pipe(err) != 0) std::abort();
    pid_ = ::fork();
    if (pid_ == 0) {
      ::dup2(out[1], STDOUT_FILENO);
      ::dup2(err[1], STDERR_FILENO);
      for (const int fd : {out[0], out[1], err[0], err[1]}) ::close(fd);
      const std::string path = program().string();
      std::vector<char*> argv{const_cast<char*>(path.c_str())};
      for (std::string& argument : arguments) argv.push_back(argument.data());
      argv.push_back(nullptr);
      ::execv(argv[0], argv.data());
      ::_exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);
    out_ = out[0];
    err_ = err[0];
  }
  ~Program() {
    if (pid_ > 0) end(SIGKILL);
    ::close(out_);
    ::close(err_);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  std::string line() {
    read_until(out_, printed_, "\n");
    const std::size_t end = printed_.find('\n');
    const std::string line = printed_.substr(0, end);
    printed_.erase(0, end == std::string::npos ? end : end + 1);
    return line;
  }
  std::string errors() {
    std::string text;
    read_until(err_, text, "\x04");
    return text;
  }
  /// Its exit code; -1 when a signal ended it.
  int end(int signal = 0) {
    if (signal != 0) ::kill(pid_, signal);
    int status = 0;
    ::waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// Seconds of processor time it has used.
  double processor_time() const {
    std::ifstream stat("/proc/" + std::to_string(pid_) + "/stat");
    std::string field;
    long ticks = 0;
    for (int i = 1; i <= 15 && stat >> field; ++i) ticks += i >= 14 ? std::stol(field) : 0;
    return static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
  }

 private:
  pid_t pid_ = -1;
  int out_ = -1;
  int err_ = -1;
  std::string printed_;
};

/// A host's end of the line. It sets up nothing: the line comes ready to use.
class Host {
 public:
  explicit Host(const std::string& path) : fd_(::open(path.c_str(), O_RDWR | O_NOCTTY)) {}
  ~Host() { ::close(fd_); }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  bool open() const { return fd_ >= 0; }
  void send(std::string_view text) {
    while (!text.empty()) {
      const ssize_t count = ::write(fd_, text.data(), text.size());
      ASSERT_GT(count, 0);
      text.remove_prefix(static_cast<std::size_t>(count));
    }
  }
  /// What came up to and including `wanted`; what came instead when it did not.
  std::string expect(std::string_view wanted) {
    read_until(fd_, received_, wanted);
    const std::size_t found = received_.find(wanted);
    const std::size_t end = found == std::string::npos ? found : found + wanted.size();
    const std::string text = received_.substr(0, end);
    received_.erase(0, end);
    return text;
  }

 private:
  int fd_;
  std::string received_;
};

bool ends_with(const std::string& text, std::string_view end) {
  return text.size() >= end.size() && std::string_view(text).substr(text.size() - end.size()) == end;
}

/// A path of this test's own that does not exist.
fs::path fresh_path(const char* name) {
  const fs::path path = fs::temp_directory_path() / (std::string(name) + std::to_string(::getpid()));
  fs::remove(path);
  return path;
}

}  // namespace

TEST(SimulatorProgram, ServesHostsThatComeAndGo) {
  const fs::path link = fresh_path("qv5123sim-link");
  Program simulator({"--link", link.string(), "--trace"});
  const std::string path = simulator.line();
  EXPECT_EQ(fs::read_symlink(link), path);
  {
    Host host(link.string());
    ASSERT_TRUE(host.open());
    EXPECT_TRUE(ends_with(host.expect("^"), "303432^")) << "it announces itself";
    host.send("@9209*@9222*@935a*");
    EXPECT_EQ(simulator.line(), "@9209*");
  }
  // A host that comes back before anybody can notice that it was gone is not greeted.
  ::poll(nullptr, 0, 200);
  {
    Host host(path);
    ASSERT_TRUE(host.open());
    EXPECT_TRUE(ends_with(host.expect("^"), "303432^")) << "it announces itself again";
    host.send("@9409*@9422*");
    EXPECT_EQ(host.expect("^"), "~5a^") << "the chip has gone on living";
  }
  EXPECT_LT(simulator.processor_time(), 2);
  EXPECT_EQ(simulator.end(SIGTERM), 0);
  EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST(SimulatorProgram, TakesAnImageNoFasterThanTheLine) {
  Program simulator({"--line-rate", "115200"});
  Host host(simulator.line());
  ASSERT_TRUE(host.open());
  host.expect("^");
  constexpr std::size_t kBlocks = 32;
  const auto start = Clock::now();
  host.send("A" + std::string{static_cast<char>(kBlocks), '\0'} + std::string(256 * kBlocks, '\xA5') +
            static_cast<char>(kBlocks));
  EXPECT_EQ(host.expect("ok\r\n"), "\r\nFirmware: 32 blocks received, checksum ok\r\n");
  const std::chrono::duration<double> taken = Clock::now() - start;
  const double line_time = (256 * kBlocks + 4 + 47) * 10 / 115200.0;
  EXPECT_GE(taken.count(), 0.995 * line_time);
  EXPECT_LE(taken.count(), 1.5 * line_time);
  EXPECT_EQ(simulator.end(SIGINT), 0);
}

TEST(SimulatorProgram, ComesBackAfterAHangup) {
  const fs::path link = fresh_path("qv5123sim-hangup");
  Program simulator({"--link", link.string(), "--fault", "hangup=1"});
  const std::string first = simulator.line();
  {
    Host host(first);
    ASSERT_TRUE(host.open());
    host.send("@");
    EXPECT_EQ(host.expect("^"), "") << "the line breaks";
  }
  EXPECT_FALSE(simulator.line().empty()) << "the path that the board came back on";
  EXPECT_TRUE(Host(link.string()).open());
  EXPECT_EQ(simulator.end(SIGTERM), 0);
}

TEST(SimulatorProgram, AnswersOnAPortThatItIsGiven) {
  const int near_end = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_TRUE(near_end >= 0 && ::grantpt(near_end) == 0 && ::unlockpt(near_end) == 0);
  const std::string port = ::ptsname(near_end);
  Program simulator({"--port", port});
  EXPECT_EQ(simulator.line(), port);
  std::string text;
  read_until(near_end, text, "^");
  EXPECT_TRUE(ends_with(text, "303432^"));
  const std::string_view request = "@9408*@9404*";
  ASSERT_EQ(::write(near_end, request.data(), request.size()), static_cast<ssize_t>(request.size()));
  text.clear();
  read_until(near_end, text, "^");
  EXPECT_EQ(text, "~12^");
  // A port that is gone is looked for again, but a program that is to end does so.
  ::close(near_end);
  EXPECT_EQ(simulator.end(SIGTERM), 0);

  Program without({"--port", "/dev/no-such-port"});
  EXPECT_NE(without.errors().find("/dev/no-such-port"), std::string::npos);
  EXPECT_EQ(without.end(), 3);
}

TEST(SimulatorProgram, NamesABadOptionInOneLine) {
  const fs::path file = fresh_path("qv5123sim-file");
  std::ofstream(file) << "mine";
  const struct {
    std::vector<std::string> arguments;
    std::string complaint;
  } cases[] = {
      {{"--fault", "drop=2"}, "--fault \"drop=2\" needs a rate from 0 to 1"},
      {{"--fault", "drop=0.1", "--fault", "spill=1"},
       "--fault \"spill=1\" names no fault; the kinds are drop, corrupt, duplicate, delay, hangup"},
      {{"--bogus"}, "The following argument was not expected: --bogus"},
      {{"--seed", "x"}, "Could not convert: --seed = x"},
      {{"--line-rate", "0"}, "--line-rate: Value 0 not in range 1 to 100000000"},
      {{"--link", file.string()}, "--link " + file.string() + " exists and is not a link"},
  };
  for (const auto& bad : cases) {
    Program simulator(bad.arguments);
    EXPECT_EQ(simulator.errors(), "qv5123sim: " + bad.complaint + "\n");
    EXPECT_EQ(simulator.end(), 2);
  }
  EXPECT_EQ(fs::file_size(file), 4u);
  fs::remove(file);
}
