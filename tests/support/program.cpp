#include "support/program.h"

namespace qv5123::test {
namespace {

/// What no file or program prints, so that reading goes on to the end.
constexpr std::string_view kNever{"\0\x04\0", 3};

}  // namespace

std::string Program::line() {
  std::string line = expect("\n");
  if (line.ends_with('\n')) line.pop_back();
  return line;
}

std::string Program::output() {
  return expect(kNever);
}

std::string Program::errors() {
  std::string text;
  read_errors(text, kNever);
  return text;
}

std::string Program::expect(std::string_view wanted) {
  read_output(printed_, wanted);
  const std::size_t found = printed_.find(wanted);
  const std::size_t end = found == std::string::npos ? printed_.size() : found + wanted.size();
  const std::string text = printed_.substr(0, end);
  printed_.erase(0, end);
  return text;
}

}  // namespace qv5123::test
