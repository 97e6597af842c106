#include "tuning/register_script.h"

#include <algorithm>
#include <string>
#include <utility>

#include "link/indirect_access.h"

namespace qv5123 {
namespace {

constexpr int kEnd = std::char_traits<char>::eof();

}  // namespace

RegisterScript::RegisterScript(std::unique_ptr<std::istream> file) : file_(std::move(file)) {
  // An empty file has no line to repeat: it ends at once, instead of writing 0 to address 000.
  at_end_ = !file_ || file_->peek() == kEnd;
}

RegisterScript::Step RegisterScript::tick() {
  if (at_end_) {
    file_.reset();
    return {true, {}};
  }
  read_line();
  if (blank()) return {};
  const int address = digit(0) * 256 + digit(1) * 16 + digit(2);
  Step step{false, isp_write(address, digit(4) * 16 + digit(5))};
  std::fill_n(line_.begin(), 3, '\0');
  return step;
}

/// The end is only noticed by reading past it; the line is then left as it stands if nothing was read.
void RegisterScript::read_line() {
  std::size_t length = 0;
  while (length < kLongest) {
    const int c = next_character();
    at_end_ = c == kEnd;
    if (at_end_) break;
    line_[length++] = static_cast<char>(c);
    if (c == '\n') break;
  }
  if (length != 0) line_[length] = '\0';
}

int RegisterScript::next_character() {
  const int c = file_->get();
  return c == '\r' && file_->peek() == '\n' ? file_->get() : c;
}

}  // namespace qv5123
