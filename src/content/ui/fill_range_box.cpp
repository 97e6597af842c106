#include "content/ui/fill_range_box.h"

#include <QFontComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include "content/font_library.h"

#include "base/ui/number_edit.h"
#include "base/ui/page_marks.h"

namespace qv5123 {

namespace {

// The printable characters of ASCII, at their own places.
constexpr int kFirstPrintable = 0x20;
constexpr int kPrintables = 95;

QSpinBox* add_number(QGridLayout* layout, int row, int column, const QString& caption, int from, int to) {
  auto* spin = keep_choice(new NumberEdit(from, to));
  spin->setAccessibleName("Fill: " + caption);
  auto* label = new QLabel(caption);
  label->setBuddy(spin);
  layout->addWidget(label, row, column);
  layout->addWidget(spin, row, column + 1);
  return spin;
}

}  // namespace

FillRangeBox::FillRangeBox(QWidget* parent) : QGroupBox("Fill from installed font", parent) {
  auto* layout = new QGridLayout(this);
  font_ = keep_choice(new QFontComboBox);
  font_->setAccessibleName("Fill: Font");
  font_->setToolTip("Font whose characters are drawn at 16x24");
  font_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  layout->addWidget(font_, 0, 0, 1, 4);

  first_character_ = add_number(layout, 1, 0, "First character", 0, 0x10FFFF);
  first_character_->setDisplayIntegerBase(16);
  first_character_->setPrefix("0x");
  first_character_->setValue(kFirstPrintable);
  first_character_->setToolTip(
      "Unicode code point of the character for the first glyph, in hex: 0x0 to 0x10FFFF");
  first_glyph_ = add_number(layout, 1, 2, "First glyph", 0, FontLibrary::kGlyphs - 1);
  first_glyph_->setValue(kFirstPrintable);
  first_glyph_->setToolTip("Number in the whole library, 0 to 1023, of the first glyph to fill");
  count_ = add_number(layout, 2, 0, "Glyphs", 1, FontLibrary::kGlyphs);
  count_->setValue(kPrintables);
  count_->setToolTip("How many glyphs to fill, 1 to 1024, up to the library's end");

  auto* fill = new QPushButton("Fill");
  fill->setAccessibleName("Fill glyphs");
  fill->setToolTip("Draw the characters into the library; can be undone");
  layout->addWidget(fill, 2, 2, 1, 2);
  connect(fill, &QPushButton::clicked, this, &FillRangeBox::fill_requested);
}

FillRangeBox::Choice FillRangeBox::choice() const {
  return {font_->currentFont(), static_cast<char32_t>(first_character_->value()), first_glyph_->value(),
          count_->value()};
}

}  // namespace qv5123
