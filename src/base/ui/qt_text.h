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

/// Paths keep every character on both systems, whatever the code page. Bytes of a name that are no UTF-8, as
/// disks can hold, go through Qt as halves of surrogate pairs, U+DC80 to U+DCFF, and come back as they were.
QString native_to_qt(const std::string& path);
QString native_to_qt(const std::wstring& path);
inline QString path_to_qt(const std::filesystem::path& path) {
  return native_to_qt(path.native());
}
std::filesystem::path to_path(const QString& text);

/// A tool tip that shows `text` as it is. Qt itself takes what looks like markup for that, pictures from any
/// path included; names from files and of files are neither.
inline QString plain_tool_tip(const QString& text) {
  return Qt::mightBeRichText(text) ? "<qt>" + text.toHtmlEscaped() + "</qt>" : text;
}

}  // namespace qv5123
