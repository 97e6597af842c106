#include "cli/output.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "cli/terminal.h"
#include "console/latin1.h"

namespace qv5123 {
namespace {

/// File names need not be UTF-8.
std::string dumped(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

bool is_control(char c) {
  const auto code = static_cast<unsigned char>(c);
  return (code < 0x20 && c != '\n' && c != '\t') || (code >= 0x7F && code < 0xA0);
}

}  // namespace

void Output::print(std::string_view text) {
  if (!ok()) return;
  errno = 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) error_ = errno != 0 ? errno : EIO;
}

void Output::text(std::string_view text) {
  if (!json_) print(text);
}

void Output::result(const Json& json) {
  if (json_) print(dumped(json, 2));
}

void Output::result(const Json& json, std::string_view text) {
  print(json_ ? dumped(json, 2) : std::string(text));
}

void Output::event(const Json& json, std::string_view text) {
  print(json_ ? dumped(json, -1) : std::string(text));
}

void Output::remark(std::string_view text) {
  if (!json_ && !quiet_) print(text);
}

void Output::warning(const std::string& line) {
  progress("");
  if (!quiet_) std::fprintf(stderr, "%s\n", line.c_str());
}

void Output::progress(const std::string& text) {
  if (quiet_ || (text.empty() && !progress_shown_) || !stderr_is_terminal()) return;
  std::fprintf(stderr, "\r%s\x1b[K", text.c_str());
  std::fflush(stderr);
  progress_shown_ = !text.empty();
}

void Output::look_for_reader() {
  if (ok() && stdout_reader_gone()) error_ = EPIPE;
}

ExitCode Output::end(ExitCode code) {
  progress("");
  // Windows says EINVAL of a pipe whose reader has gone.
  if (ok() || error_ == EPIPE || error_ == EINVAL) return code;
  complain("Cannot write the output: " + std::generic_category().message(error_));
  return code == kDone ? kBadInput : code;
}

std::string printable(std::string_view latin1) {
  std::string text;
  for (const char c : latin1) {
    if (c == '\r') continue;
    if (!is_control(c)) {
      text += latin1_to_utf8({&c, 1});
      continue;
    }
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
    text += escaped;
  }
  return text;
}

void complain(std::string text) {
  std::erase(text, '\r');
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::fprintf(stderr, "qv5123ctl: %s\n", text.c_str());
}

}  // namespace qv5123
