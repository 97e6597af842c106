#include "cli/output.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "base/hex.h"
#include "base/stop_requests.h"
#include "base/text.h"
#include "base/utf8.h"
#include "cli/terminal.h"

namespace qv5123 {
namespace {

/// So long the line that the program ends with waits for who reads it.
constexpr std::chrono::milliseconds kLastWords{1000};

bool is_control(std::string_view character) {
  const auto code = static_cast<unsigned char>(character.back());
  if (character.size() > 1) return character[0] == '\xC2' && code < 0xA0;
  return (code < 0x20 && code != '\n' && code != '\t') || (code >= 0x7F && code < 0xA0);
}

/// With `escape` and the hex digits of its code for a control character.
std::string without_controls(std::string_view utf8, const char* escape, std::size_t digits) {
  std::string text;
  while (!utf8.empty()) {
    // What is no character goes byte by byte.
    const std::string_view character = utf8.substr(0, std::max<std::size_t>(utf8_length(utf8), 1));
    if (is_control(character) && !utf8.starts_with("\r\n")) {
      text += escape + lower_hex(static_cast<unsigned char>(character.back()), digits);
    } else {
      text += character;
    }
    utf8.remove_prefix(character.size());
  }
  return text;
}

/// JSON leaves some control characters as they are.
std::string dumped(const Json& json, int indent) {
  return without_controls(json.dump(indent, ' ', false, Json::error_handler_t::replace), "\\u", 4) + "\n";
}

}  // namespace

void Output::write(std::string_view text) {
  if (!ok()) return;
  errno = 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) error_ = errno != 0 ? errno : EIO;
}

void Output::print(std::string_view text) {
  write(visible(text));
}

void Output::text(std::string_view text) {
  if (!json_) print(text);
}

void Output::result(const Json& json) {
  if (json_) write(dumped(json, 2));
}

void Output::result(const Json& json, std::string_view text) {
  json_ ? result(json) : print(text);
}

void Output::event(const Json& json, std::string_view text) {
  json_ ? write(dumped(json, -1)) : print(text);
}

void Output::remark(std::string_view text) {
  if (quiet_) return;
  progress("");
  std::fputs(visible(text).c_str(), stderr);
}

void Output::warning(const std::string& line) {
  progress("");
  if (!quiet_) std::fprintf(stderr, "%s\n", visible(line).c_str());
}

void Output::progress(const std::string& text) {
  if (quiet_ || (text.empty() && !progress_shown_) || !stderr_is_terminal()) return;
  std::fprintf(stderr, "\r%s\x1b[K", visible(text).c_str());
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
  return code == ExitCode::done ? ExitCode::bad_input : code;
}

std::string visible(std::string_view utf8) {
  return without_controls(utf8, "\\x", 2);
}

std::string chip_text(std::string_view latin1) {
  std::string text = latin1_to_utf8(latin1);
  std::erase(text, '\r');
  return text;
}

std::string printable(std::string_view latin1) {
  return visible(chip_text(latin1));
}

void complain(std::string text) {
  std::erase(text, '\r');
  std::replace(text.begin(), text.end(), '\n', ' ');
  write_last_words("qv5123ctl: " + visible(text) + "\n", kLastWords);
}

}  // namespace qv5123
