#include "registers/hex_edit.h"

#include <algorithm>

#include "base/hex.h"
#include "link/register_write.h"
#include "registers/reg_description.h"

namespace qv5123 {
namespace {

constexpr int kLowestCode = 8;
constexpr int kHighestCode = 120;
constexpr std::size_t kRangeLength = 7;

bool is_hex_digit(int code) {
  return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'F') || (code >= 'a' && code <= 'f');
}

char16_t upper_digit(int code) {
  return static_cast<char16_t>(
      upper_hex(static_cast<unsigned>(hex_value(static_cast<char32_t>(code))), 1)[0]);
}

// The decimal number a text starts with, at most three digits of it: no register has bits beyond that.
int leading_number(std::u16string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
  int number = 0;
  for (const char16_t c : text.substr(0, 3)) {
    if (c < u'0' || c > u'9') break;
    number = number * 10 + (c - u'0');
  }
  return number;
}

/// The bits that a range names; none where its numbers name no bits of a register.
struct Bits {
  int low = 0;
  int width = 0;
  int largest() const { return (1 << width) - 1; }
};

/// Nothing without a '['.
std::optional<Bits> bits_of(std::u16string_view range) {
  range = range.substr(0, kRangeLength);
  const std::size_t bracket = range.find(u'[');
  if (bracket == range.npos) return std::nullopt;
  const int high = leading_number(range.substr(bracket + 1));
  const std::size_t colon = range.find(u':');
  const int low = colon == range.npos ? high : leading_number(range.substr(colon + 1));
  if (low > 7 || high < low) return Bits{};
  return Bits{low, std::min(high - low + 1, 8)};
}

}  // namespace

std::u16string hex_text(int number, int digits) {
  const std::string hex = upper_hex(static_cast<unsigned>(number), static_cast<std::size_t>(digits));
  return u"0x" + std::u16string(hex.begin(), hex.end());
}

void HexEdit::set_text(std::u16string_view text) {
  text_ = text;
  number_ = ParseRegAddress(text);
}

std::optional<int> HexEdit::number_in(std::u16string_view text) const {
  constexpr std::u16string_view kBlanks = u" \t\r\n";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
  if (text.starts_with(u"0x") || text.starts_with(u"0X")) text.remove_prefix(2);
  if (text.empty() || text.size() > static_cast<std::size_t>(digits_)) return std::nullopt;
  int number = 0;
  for (const char16_t c : text) {
    if (!is_hex_digit(c)) return std::nullopt;
    number = number * 16 + hex_value(c);
  }
  return number;
}

bool HexEdit::take(std::u16string_view text) {
  const auto number = number_in(text);
  if (!number) return false;
  number_ = *number;
  show_number();
  return true;
}

HexEdit::KeyResult HexEdit::press(int code, int caret) {
  if (code < kLowestCode || code > kHighestCode) return KeyResult::ignored;
  if (code == key::kTab || code == key::kClear || (code >= key::kPageDown && code <= key::kLeft) ||
      code == key::kRight || (code == key::kEnter && !takes_enter_)) {
    return KeyResult::standard;
  }
  int position = caret;
  // In a text without its digits, such as the empty one, typing begins at the first of them.
  if (is_hex_digit(code) && text_.size() <= 2) position = std::max(position, 2);
  if (code != key::kEnter && !edit(code, position)) return KeyResult::ignored;
  caret_ = std::clamp(position + 1, 0, static_cast<int>(text_.size()));
  return code == key::kEnter ? KeyResult::enter : KeyResult::handled;
}

// Moves `position` to one before where the caret goes. False for a key that means nothing there.
bool HexEdit::edit(int code, int& position) {
  switch (code) {
    case key::kUp:
      step(1);
      return true;
    case key::kDown:
      step(-1);
      return true;
    case key::kBackspace:
      if (position > 1) --position;
      if (at_digit(position)) put_digit(position--, u'0');
      return true;
    case key::kDelete:
      if (at_digit(position)) put_digit(position, u'0');
      --position;
      return true;
    case 'x':
    case 'X':
      if (position == 1) normalise();
      return position == 1;
    default:
      if (!is_hex_digit(code) || !at_digit(position)) return false;
      put_digit(position, upper_digit(code));
      return true;
  }
}

void HexEdit::step(int direction) {
  number_ = std::clamp(number_ + direction, lowest_, highest_);
  show_number();
}

void HexEdit::normalise() {
  // Fewer digits than the edit holds are a number of their own, not the first digits of a larger one.
  if (text_.size() < 2 + static_cast<std::size_t>(digits_)) {
    number_ = std::max(ParseRegAddress(text_), 0);
    return show_number();
  }
  for (int i = 2; i < 2 + digits_; ++i) {
    const int c = i < static_cast<int>(text_.size()) ? text_[static_cast<std::size_t>(i)] : u'0';
    number_ = i == 2 ? 0 : number_ * 16;
    number_ += hex_value(static_cast<char32_t>(c));
  }
  show_number();
}

void HexEdit::put_digit(int position, char16_t digit) {
  normalise();
  text_[static_cast<std::size_t>(position)] = digit;
  number_ = ParseRegAddress(text_);
}

void HexEdit::show_number() {
  text_ = hex_text(number_, digits_);
}

std::string bit_field_data(std::u16string_view range, int value) {
  const std::optional<Bits> bits = bits_of(range);
  if (!bits) return {};
  return " " + std::to_string((value >> bits->low) & bits->largest());
}

std::optional<int> with_bit_field(std::u16string_view range, int value, int number) {
  const std::optional<Bits> bits = bits_of(range);
  if (!bits || bits->width == 0) return std::nullopt;
  const int largest = std::min(bits->largest(), 0xFF >> bits->low);
  const int mask = largest << bits->low;
  return (value & 0xFF & ~mask) | std::clamp(number, 0, largest) << bits->low;
}

}  // namespace qv5123
