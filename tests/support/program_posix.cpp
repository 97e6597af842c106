#include "support/program_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <system_error>
#include <utility>

namespace qv5123::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

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
  const auto deadline = Clock::now() + std::chrono::seconds(30);
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

struct Program::Process {
  pid_t id = -1;
  int in = -1;
  int out = -1;
  int err = -1;
};

Program::Program(const std::string& name, std::vector<std::string> arguments, const fs::path& folder)
    : process_(std::make_unique<Process>()) {
  const std::string path = name.front() == '/' ? name : (program_folder() / name).string();
  int in[2], out[2], err[2];
  // Closed on exec, so that no other program keeps a pipe open.
  if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "No pipe");
  }
  process_->id = ::fork();
  if (process_->id == 0) become(path, arguments, folder, in[0], out[1], err[1]);
  for (const int fd : {in[0], out[1], err[1]}) ::close(fd);
  process_->in = in[1];
  process_->out = out[0];
  process_->err = err[0];
}

Program::~Program() {
  if (process_->id > 0) end(SIGKILL);
  for (const int fd : {process_->in, process_->out, process_->err}) ::close(fd);
}

void Program::read_output(std::string& text, std::string_view wanted) {
  read_until(process_->out, text, wanted);
}

void Program::read_errors(std::string& text, std::string_view wanted) {
  read_until(process_->err, text, wanted);
}

void Program::type(std::string_view text) {
  if (::write(process_->in, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    throw std::system_error(errno, std::generic_category(), "The program reads no more");
}

void Program::signal(int number) const {
  ::kill(process_->id, number);
}

int Program::end(int signal) {
  if (signal != 0) ::kill(process_->id, signal);
  int status = 0;
  ::waitpid(std::exchange(process_->id, -1), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

double Program::processor_time() const {
  std::ifstream stat("/proc/" + std::to_string(process_->id) + "/stat");
  std::string field;
  long ticks = 0;
  for (int i = 1; i <= 15 && stat >> field; ++i) ticks += i >= 14 ? std::stol(field) : 0;
  return static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

}  // namespace qv5123::test
