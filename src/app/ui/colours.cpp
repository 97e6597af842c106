#include "app/ui/colours.h"

namespace qv5123 {

QPalette dark_palette() {
  const QColor window(0x2B, 0x2B, 0x2E);
  const QColor text(0xE6, 0xE6, 0xE6);
  const QColor faded(0x85, 0x85, 0x85);
  QPalette palette(window);
  palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
  palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x26, 0x29));
  palette.setColor(QPalette::Button, QColor(0x3A, 0x3A, 0x3E));
  palette.setColor(QPalette::ToolTipBase, QColor(0x3A, 0x3A, 0x3E));
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, faded);
  }
  palette.setColor(QPalette::PlaceholderText, faded);
  palette.setColor(QPalette::Highlight, QColor(0x2F, 0x6F, 0xC0));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(0x6C, 0xB0, 0xF5));
  palette.setColor(QPalette::LinkVisited, QColor(0xB0, 0x9C, 0xF0));
  return palette;
}

}  // namespace qv5123
