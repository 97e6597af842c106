#include "support/program.h"

namespace qv5123::test {
namespace {

/// What no file or program prints, so that reading goes on to the end.
constexpr std::string_view kNever{"\0\x04\0", 3};

/// Takes from `text` all up to and including `wanted`.
std::string take_until(std::string& text, std::string_view wanted) {
  const std::size_t found = text.find(wanted);
  const std::size_t end = found == std::string::npos ? text.size() : found + wanted.size();
  std::string taken = text.substr(0, end);
  text.erase(0, end);
  return taken;
}

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
  return expect_error(kNever);
}

std::string Program::expect(std::string_view wanted) {
  read_output(printed_, wanted);
  return take_until(printed_, wanted);
}

std::string Program::expect_error(std::string_view wanted) {
  read_errors(complained_, wanted);
  return take_until(complained_, wanted);
}

}  // namespace qv5123::test
