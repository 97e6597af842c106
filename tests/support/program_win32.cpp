#include <windows.h>

#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include "base/handle_win32.h"
#include "base/text_win32.h"
#include "support/program.h"

namespace qv5123::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Fails the test that asked for it, with the system's words.
[[noreturn]] void fail(const std::string& what) {
  const DWORD error = GetLastError();
  throw std::runtime_error(what + ": " + system_message(error));
}

/// One end is the child's, the other is kept from it.
struct Pipe {
  Handle read;
  Handle write;
};

Pipe make_pipe(bool child_reads) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  if (!CreatePipe(&read, &write, &inherited, 0)) fail("No pipe");
  SetHandleInformation(child_reads ? write : read, HANDLE_FLAG_INHERIT, 0);
  return {Handle(read), Handle(write)};
}

/// Quoted so that the program finds it again as it is: backslashes count double before a quote only.
std::string quoted(const std::string& argument) {
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '"') text.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, '\\') + "\"";
}

/// A busy system refuses a program now and then, or something still looks at its file.
PROCESS_INFORMATION start_process(const fs::path& path, const std::string& line, const fs::path& folder,
                                  STARTUPINFOW& start) {
  constexpr int kTries = 10;
  PROCESS_INFORMATION made{};
  for (int i = 1;; ++i) {
    std::wstring command = to_wide(line);
    if (CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                       folder.empty() ? nullptr : folder.c_str(), &start, &made)) {
      return made;
    }
    if (i == kTries) fail("Cannot start " + line);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }
}

/// Until `text` holds `wanted`, the other end is closed, or a minute has passed: programs start slowly here.
void read_until(HANDLE pipe, std::string& text, std::string_view wanted) {
  const auto deadline = Clock::now() + std::chrono::minutes(1);
  while (text.find(wanted) == std::string::npos && Clock::now() < deadline) {
    DWORD waiting = 0;
    if (!PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr)) return;
    if (waiting == 0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      continue;
    }
    char buffer[4096];
    DWORD count = 0;
    if (!ReadFile(pipe, buffer, sizeof buffer, &count, nullptr)) return;
    text.append(buffer, count);
    std::erase(text, '\r');
  }
}

}  // namespace

struct Program::Process {
  Handle process;
  Handle in;
  Handle out;
  Handle err;
};

fs::path program_folder() {
  wchar_t path[MAX_PATH]{};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fs::path(path).parent_path().parent_path() / "bin";
}

Program::Program(const std::string& name, std::vector<std::string> arguments, const fs::path& folder)
    : process_(std::make_unique<Process>()) {
  Pipe in = make_pipe(true);
  Pipe out = make_pipe(false);
  Pipe err = make_pipe(false);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = in.read.get();
  start.hStdOutput = out.write.get();
  start.hStdError = err.write.get();
  const fs::path path = program_folder() / (name + ".exe");
  std::string line = quoted(name);
  for (const std::string& argument : arguments) line += " " + quoted(argument);
  const PROCESS_INFORMATION made = start_process(path, line, folder, start);
  CloseHandle(made.hThread);
  process_->process = Handle(made.hProcess);
  process_->in = std::move(in.write);
  process_->out = std::move(out.read);
  process_->err = std::move(err.read);
}

Program::~Program() {
  if (process_->process) end(1);
}

void Program::read_output(std::string& text, std::string_view wanted) {
  read_until(process_->out.get(), text, wanted);
}

void Program::read_errors(std::string& text, std::string_view wanted) {
  read_until(process_->err.get(), text, wanted);
}

void Program::type(std::string_view text) {
  DWORD written = 0;
  const auto size = static_cast<DWORD>(text.size());
  if (!WriteFile(process_->in.get(), text.data(), size, &written, nullptr)) fail("The program reads no more");
}

int Program::end(int signal) {
  if (signal != 0) TerminateProcess(process_->process.get(), static_cast<UINT>(-1));
  WaitForSingleObject(process_->process.get(), INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process_->process.get(), &code);
  process_->process.reset();
  return static_cast<int>(code);
}

}  // namespace qv5123::test
