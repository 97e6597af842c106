#pragma once

#include <QPushButton>
#include <QString>

namespace qv5123 {

/// A button that assistive tools call by its caption.
inline QPushButton* push_button(const QString& caption, const QString& tool_tip, QWidget* parent = nullptr) {
  auto* button = new QPushButton(caption, parent);
  button->setAccessibleName(caption);
  button->setToolTip(tool_tip);
  return button;
}

}  // namespace qv5123
