#pragma once

#include <QString>
#include <algorithm>
#include <string_view>

namespace qv5123 {

/// A description's name for a narrow cell. Many are laid out at once, so one that no cell has the room for is
/// cut.
inline QString shown_name(std::u16string_view name) {
  constexpr std::size_t kLongest = 256;
  const QString shown =
      QString::fromUtf16(name.data(), static_cast<qsizetype>(std::min(name.size(), kLongest)));
  return name.size() > kLongest ? shown + QChar(0x2026) : shown;
}

}  // namespace qv5123
