#include "registers/ui/bit_boxes.h"

#include <QCheckBox>
#include <QEvent>
#include <QLabel>

namespace qv5123 {
namespace {

constexpr int kCharactersPerDigit = 4;  // a digit and three blanks
constexpr int kBoxDistance = 6;         // pixels between boxes, at least

}  // namespace

BitBoxes::BitBoxes(QWidget* parent)
    : QWidget(parent), digits_(new QLabel("7   6   5   4   3   2   1   0", this)) {
  for (int bit = 7; bit >= 0; --bit) {
    auto* box = new QCheckBox(this);
    box->setAccessibleName(QStringLiteral("Bit %1").arg(bit));
    box->setToolTip(QStringLiteral("Bit %1 of the value").arg(bit));
    // A screen reader toggles a box without a click.
    connect(box, &QCheckBox::toggled, this, [this] { emit toggled(bits()); });
    boxes_[static_cast<std::size_t>(bit)] = box;
  }
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  space_digits();
}

int BitBoxes::bits() const {
  int bits = 0;
  for (std::size_t bit = 0; bit < boxes_.size(); ++bit) bits |= boxes_[bit]->isChecked() << bit;
  return bits;
}

void BitBoxes::set_bits(int bits) {
  for (std::size_t bit = 0; bit < boxes_.size(); ++bit) {
    const QSignalBlocker blocker(boxes_[bit]);
    boxes_[bit]->setChecked(bits >> bit & 1);
  }
}

// The label is one text, so its characters are moved apart until a box fits under each digit.
void BitBoxes::space_digits() {
  QFont spaced = font();
  spaced.setLetterSpacing(QFont::AbsoluteSpacing, 0);
  const int pitch = QFontMetrics(spaced).horizontalAdvance(digits_->text().left(kCharactersPerDigit));
  const int wanted = boxes_[0]->sizeHint().width() + kBoxDistance;
  spaced.setLetterSpacing(QFont::AbsoluteSpacing,
                          std::max(0.0, double(wanted - pitch) / kCharactersPerDigit));
  digits_->setFont(spaced);
  updateGeometry();
  place();
}

void BitBoxes::place() {
  const QFontMetricsF metrics(digits_->font());
  const QSize box = boxes_[0]->sizeHint();
  const QSize label = digits_->sizeHint();
  const double digit = QFontMetricsF(font()).horizontalAdvance(QLatin1Char('7'));
  const int indent = std::max(0, int((box.width() - digit) / 2));
  digits_->setGeometry(indent, 0, label.width(), label.height());
  for (int bit = 7; bit >= 0; --bit) {
    const double left = metrics.horizontalAdvance(digits_->text().left((7 - bit) * kCharactersPerDigit));
    const int middle = indent + qRound(left + digit / 2);
    boxes_[static_cast<std::size_t>(bit)]->setGeometry(middle - box.width() / 2, label.height() + 1,
                                                       box.width(), box.height());
  }
}

QSize BitBoxes::sizeHint() const {
  const QSize box = boxes_[0]->sizeHint();
  const QSize label = digits_->sizeHint();
  return {label.width() + box.width(), label.height() + 1 + box.height()};
}

void BitBoxes::resizeEvent(QResizeEvent*) {
  place();
}

void BitBoxes::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) space_digits();
}

}  // namespace qv5123
