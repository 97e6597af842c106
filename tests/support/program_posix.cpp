#include "support/program_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <utility>

namespace qv5123::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// What no file or program prints, so that reading goes on to the end.
constexpr std::string_view kNever{"\0\x04\0", 3};

[[noreturn]] void become(const std::string& path, std::vector<std::string>& arguments, const fs::path& folder,
                         int in, int out, int err) {
  ::dup2(in, STDIN_FILENO);
  ::dup2(out, STDOUT_FILENO);
  ::dup2(err, STDERR_FILENO);
  std::vector<char*> argv{const_cast<char*>(path.c_str())};
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  if (folder.empty() || ::chdir(folder.c_str()) == 0) ::execv(argv[0], argv.data());
  ::_exit(127);
}

}  // namespace

void read_until(int fd, std::string& text, std::string_view wanted) {
  const auto deadline = Clock::now() + std::chrono::seconds(10);
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

fs::path program_folder() {
  if (const char* folder = std::getenv("QV5123_BIN")) return folder;
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "bin";
}

Program::Program(const std::string& name, std::vector<std::string> arguments, const fs::path& folder) {
  const std::string path = name.front() == '/' ? name : (program_folder() / name).string();
  int in[2], out[2], err[2];
  // Closed on exec, so that no other program keeps a pipe open.
  if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) {
    std::abort();
  }
  pid_ = ::fork();
  if (pid_ == 0) become(path, arguments, folder, in[0], out[1], err[1]);
  for (const int fd : {in[0], out[1], err[1]}) ::close(fd);
  in_ = in[1];
  out_ = out[0];
  err_ = err[0];
}

Program::~Program() {
  if (pid_ > 0) end(SIGKILL);
  for (const int fd : {in_, out_, err_}) ::close(fd);
}

std::string Program::line() {
  std::string line = expect("\n");
  if (line.ends_with('\n')) line.pop_back();
  return line;
}

std::string Program::expect(std::string_view wanted) {
  read_until(out_, printed_, wanted);
  const std::size_t found = printed_.find(wanted);
  const std::size_t end = found == std::string::npos ? printed_.size() : found + wanted.size();
  const std::string text = printed_.substr(0, end);
  printed_.erase(0, end);
  return text;
}

std::string Program::output() {
  return expect(kNever);
}

std::string Program::errors() {
  std::string text;
  read_until(err_, text, kNever);
  return text;
}

void Program::type(std::string_view text) {
  if (::write(in_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
}

void Program::signal(int number) const {
  ::kill(pid_, number);
}

int Program::end(int signal) {
  if (signal != 0) ::kill(pid_, signal);
  int status = 0;
  ::waitpid(std::exchange(pid_, -1), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

double Program::processor_time() const {
  std::ifstream stat("/proc/" + std::to_string(pid_) + "/stat");
  std::string field;
  long ticks = 0;
  for (int i = 1; i <= 15 && stat >> field; ++i) ticks += i >= 14 ? std::stol(field) : 0;
  return static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

}  // namespace qv5123::test
