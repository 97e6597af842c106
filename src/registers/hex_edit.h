#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qv5123 {

/// What a key means to a hexadecimal edit. Codes are the characters typed; the keys without a character have
/// the virtual-key codes below, which they share with characters. One handler serves both, so '&' and '('
/// act as the up and down arrows and '.' as Delete.
namespace key {
inline constexpr int kBackspace = 8;
inline constexpr int kTab = 9;
inline constexpr int kClear = 12;
inline constexpr int kEnter = 13;
inline constexpr int kPageDown = 34;
inline constexpr int kEnd = 35;
inline constexpr int kHome = 36;
inline constexpr int kLeft = 37;
inline constexpr int kUp = 38;
inline constexpr int kRight = 39;
inline constexpr int kDown = 40;
inline constexpr int kDelete = 46;
}  // namespace key

/// The text, number and caret of an edit that always shows "0x" and a fixed number of upper-case digits.
class HexEdit {
 public:
  enum class KeyResult {
    ignored,   ///< nothing changed
    handled,   ///< text, number or caret may have changed
    standard,  ///< the edit control does what it does by itself
    enter,     ///< Enter was pressed and means something to the page
  };

  /// Two digits, 0x00..0xFF.
  static HexEdit value_edit() { return HexEdit(2, 0, 0xFF, false, u"0x00"); }
  /// Four digits; the arrows keep within the chip's register window 0xF800..0xFFFF.
  static HexEdit address_edit() { return HexEdit(4, 0xF800, 0xFFFF, true, u"0xF800"); }

  const std::u16string& text() const { return text_; }
  /// -1 while a text without "0x" is shown.
  int number() const { return number_; }
  int caret() const { return caret_; }

  /// Shows `text` as it is, which need not be of the edit's own form until the next key.
  void set_text(std::u16string_view text);

  /// Takes a text that did not come key by key: hex digits, no more than the edit has, with or without "0x"
  /// before and blanks around them. False for any other, and then nothing changed.
  bool take(std::u16string_view text);
  /// Whether take() would.
  bool takes(std::u16string_view text) const { return number_in(text).has_value(); }

  /// Handles the key `code` with the caret before character `caret`.
  KeyResult press(int code, int caret);
  /// One step up or down, as the arrow keys and the spin do.
  void step(int direction);

 private:
  HexEdit(int digits, int lowest, int highest, bool takes_enter, std::u16string_view text)
      : digits_(digits), lowest_(lowest), highest_(highest), takes_enter_(takes_enter), text_(text) {
    number_ = lowest;
  }

  bool at_digit(int position) const { return position >= 2 && position < 2 + digits_; }
  bool edit(int code, int& position);
  std::optional<int> number_in(std::u16string_view text) const;
  void normalise();
  void put_digit(int position, char16_t digit);
  void show_number();

  int digits_;
  int lowest_;
  int highest_;
  bool takes_enter_;
  std::u16string text_;
  int number_ = 0;
  int caret_ = 0;
};

/// "0x" and `digits` upper-case hexadecimal digits.
std::u16string hex_text(int number, int digits);

/// The Data column's text for a bit field: a blank and the decimal number that the bits of `range` have in
/// `value` (0..255). `range` is "[high:low]" or "[bit]", of which seven characters count; without a '[' the
/// text is empty. Bits that do not exist are 0.
std::string bit_field_data(std::u16string_view range, int value);

/// `value` with the bits of `range` replaced by `number`, which is held within what they can be. Nothing
/// where the range names no bits of a register.
std::optional<int> with_bit_field(std::u16string_view range, int value, int number);

}  // namespace qv5123
