#pragma once

#include <QFont>
#include <QGroupBox>

class QFontComboBox;
class QSpinBox;

namespace qv5123 {

/// Asks what to fill a range of glyphs with: consecutive characters of an installed font.
class FillRangeBox : public QGroupBox {
  Q_OBJECT

 public:
  explicit FillRangeBox(QWidget* parent = nullptr);

  struct Choice {
    QFont font;
    /// Unicode code point drawn into the first glyph.
    char32_t first_character = 0;
    /// 0..1023.
    int first_glyph = 0;
    /// 1..1024.
    int count = 0;
  };
  Choice choice() const;

 signals:
  void fill_requested();

 private:
  QFontComboBox* font_;
  QSpinBox* first_character_;
  QSpinBox* first_glyph_;
  QSpinBox* count_;
};

}  // namespace qv5123
