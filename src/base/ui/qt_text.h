#pragma once

#include <QString>
#include <QTextDocument>
#include <filesystem>
#include <string>
#include <string_view>

namespace qv5123 {

/// The core's UTF-8 text as Qt's, and back.
inline QString to_qt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string from_qt(const QString& text) {
  return text.toStdString();
}

inline QString native_to_qt(const std::string& path) {
  return to_qt(path);
}
inline QString native_to_qt(const std::wstring& path) {
  return QString::fromStdWString(path);
}

/// Paths keep every character on both systems, whatever the code page. What is no Unicode text, as settings
/// and disks can hold, is replaced; the library's own conversions would throw.
inline QString path_to_qt(const std::filesystem::path& path) {
  return native_to_qt(path.native());
}
inline std::filesystem::path to_path(const QString& text) {
  const QByteArray bytes = text.toUtf8();
  return std::u8string(bytes.begin(), bytes.end());
}

/// A tool tip that shows `text` as it is. Qt itself takes what looks like markup for that, pictures from any
/// path included; names from files and of files are neither.
inline QString plain_tool_tip(const QString& text) {
  return Qt::mightBeRichText(text) ? "<qt>" + text.toHtmlEscaped() + "</qt>" : text;
}

}  // namespace qv5123
