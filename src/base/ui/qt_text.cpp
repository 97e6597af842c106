#include "base/ui/qt_text.h"

#include <type_traits>

namespace qv5123 {
namespace {

constexpr char16_t kStrayByte = 0xDC00;

bool is_stray_byte(QChar c) {
  return c.unicode() >= kStrayByte + 0x80 && c.unicode() <= kStrayByte + 0xFF;
}

/// How many bytes a character has that begins with this one.
std::size_t length_after(unsigned char lead) {
  if (lead < 0xC0) return 1;
  if (lead < 0xE0) return 2;
  return lead < 0xF0 ? 3 : 4;
}

/// The character that `bytes` begin with, whose bytes are taken off; a stray byte counts as one.
QString take_character(std::string_view& bytes) {
  const std::string_view whole = bytes.substr(0, length_after(static_cast<unsigned char>(bytes[0])));
  const QString character = to_qt(whole);
  if (!character.contains(QChar::ReplacementCharacter) || from_qt(character) == whole) {
    bytes.remove_prefix(whole.size());
    return character;
  }
  const QChar stray(static_cast<char16_t>(kStrayByte + static_cast<unsigned char>(bytes[0])));
  bytes.remove_prefix(1);
  return stray;
}

/// UTF-8 again, with the stray bytes in their places.
std::string bytes_of(const QString& text) {
  std::string bytes;
  for (qsizetype at = 0; at < text.size();) {
    const bool pair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
    if (!pair && is_stray_byte(text[at])) {
      bytes += static_cast<char>(text[at].unicode() - kStrayByte);
    } else {
      bytes += from_qt(text.mid(at, pair ? 2 : 1));
    }
    at += pair ? 2 : 1;
  }
  return bytes;
}

}  // namespace

QString native_to_qt(const std::string& path) {
  QString text = to_qt(path);
  if (!text.contains(QChar::ReplacementCharacter)) return text;
  text.clear();
  for (std::string_view rest = path; !rest.empty();) text += take_character(rest);
  return text;
}

QString native_to_qt(const std::wstring& path) {
  return QString::fromStdWString(path);
}

std::filesystem::path to_path(const QString& text) {
  if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
    return bytes_of(text);
  } else {
    // What is no Unicode text is replaced; the library's own conversions would throw.
    const QByteArray bytes = text.toUtf8();
    return std::u8string(bytes.begin(), bytes.end());
  }
}

}  // namespace qv5123
