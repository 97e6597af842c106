#pragma once

#include <QLatin1String>
#include <QWidget>
#include <algorithm>

namespace qv5123 {

/// A column of one of the register page's tables.
struct ColumnLayout {
  const char* heading;
  int width;           // pixels
  const char* widest;  // a content that must fit with any font
};

/// The given width, or what the content needs with the cell's own margins.
inline int column_width(const ColumnLayout& column, const QWidget& widget, int margins) {
  return std::max(column.width,
                  widget.fontMetrics().horizontalAdvance(QLatin1String(column.widest)) + margins);
}

}  // namespace qv5123
