#include "console/console_text.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace qv5123 {
namespace {

constexpr std::size_t kKeptCharacters = ConsoleText::kCharacterLimit / 4 * 3;

// How many UTF-16 units the character has that starts with `byte`; 0 for the bytes that follow it.
std::size_t units_from(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  if ((code & 0xC0) == 0x80) return 0;
  return code >= 0xF0 ? 2 : 1;
}

std::size_t units_in(std::string_view utf8) {
  std::size_t units = 0;
  for (const char byte : utf8) units += units_from(byte);
  return units;
}

// The bytes of the whole characters at the front that make at least `units`, or all there are.
std::size_t bytes_of_units(std::string_view utf8, std::size_t units) {
  std::size_t counted = 0;
  std::size_t at = 0;
  for (; at < utf8.size(); ++at) {
    const std::size_t more = units_from(utf8[at]);
    if (more > 0 && counted >= units) break;
    counted += more;
  }
  return at;
}

}  // namespace

ConsoleChange ConsoleText::append_received(std::string_view latin1) {
  if (lines() <= kLineLimit) return take(latin1_to_utf8(latin1));
  clear();
  ConsoleChange change;
  change.cleared = true;
  return change;
}

ConsoleChange ConsoleText::append(std::string_view utf8) {
  return take(std::string(utf8));
}

void ConsoleText::clear() {
  text_.clear();
  start_ = 0;
  units_ = 0;
  line_ends_ = 0;
}

ConsoleChange ConsoleText::take(std::string added) {
  ConsoleChange change;
  std::erase(added, '\r');
  std::size_t units = units_in(added);
  if (units > kKeptCharacters) {
    clear();
    change.cleared = true;
    added.erase(0, bytes_of_units(added, units - kKeptCharacters));
    units = units_in(added);
  } else if (units_ + units > kCharacterLimit) {
    change.dropped = drop(units_ + units - kKeptCharacters);
  }
  text_ += added;
  units_ += units;
  line_ends_ += static_cast<std::size_t>(std::count(added.begin(), added.end(), '\n'));
  change.appended = std::move(added);
  return change;
}

std::size_t ConsoleText::drop(std::size_t units) {
  const std::string_view all = text();
  const std::string_view gone = all.substr(0, bytes_of_units(all, units));
  const std::size_t dropped = units_in(gone);
  units_ -= dropped;
  line_ends_ -= static_cast<std::size_t>(std::count(gone.begin(), gone.end(), '\n'));
  start_ += gone.size();
  // Moving the rest to the front only when it is the smaller part keeps the cost per character constant.
  if (start_ > text_.size() / 2) text_.erase(0, std::exchange(start_, 0));
  return dropped;
}

}  // namespace qv5123
