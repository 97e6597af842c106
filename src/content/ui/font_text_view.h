#pragma once

#include <QWidget>

#include "content/font_editor.h"

namespace qv5123 {

/// A text in the glyphs of the page that is shown, twice their size: a character is the glyph of its code.
class FontTextView final : public QWidget {
  Q_OBJECT

 public:
  /// `editor` must outlive the view.
  explicit FontTextView(const FontEditor& editor, QWidget* parent = nullptr);

  void show_text(const QString& text);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// The glyph as it is seen: of the one being edited what is drawn.
  Glyph glyph(int index) const;

  const FontEditor& editor_;
  QString text_;
};

}  // namespace qv5123
