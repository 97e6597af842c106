#include "tuning/ui/mark_strip.h"

#include <QEvent>
#include <QPainter>
#include <utility>
#include <vector>

namespace qv5123 {
namespace {

const QColor kUnsent(0xE0, 0x8A, 0x00);
const QColor kOtherOnChip(0x8E, 0x44, 0xAD);
const QColor kOtherInFile(0x1F, 0x6F, 0xC4);

std::vector<QColor> colours_of(const ValueMark& mark) {
  std::vector<QColor> colours;
  if (mark.unsent) colours.push_back(kUnsent);
  if (mark.differs_from_chip) colours.push_back(kOtherOnChip);
  if (mark.differs_from_file) colours.push_back(kOtherInFile);
  return colours;
}

}  // namespace

QString mark_text(const ValueMark& mark) {
  if (!mark.any()) return {};
  QString others = QString::fromStdString(mark.others);
  if (!mark.unsent) return others;
  if (!others.isEmpty()) others[0] = others[0].toUpper();
  return others.isEmpty() ? QStringLiteral("Not sent") : "Not sent. " + others;
}

void MarkStrip::show_mark(QWidget* edit, const ValueMark& mark) {
  auto* strip = edit->findChild<MarkStrip*>(QString(), Qt::FindDirectChildrenOnly);
  if (!strip && mark.any()) strip = new MarkStrip(edit);
  if (!strip) return;
  strip->set_mark(mark);
  strip->tell(mark_text(mark));
}

MarkStrip::MarkStrip(QWidget* edit) : QWidget(edit) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setGeometry(0, 0, kWidth, edit->height());
  edit->installEventFilter(this);
}

void MarkStrip::set_mark(const ValueMark& mark) {
  if (mark_ == mark) return;
  mark_ = mark;
  setVisible(mark_.any());
  update();
}

/// Others add to the tooltip as well: the mark's text need not stand at its end.
void MarkStrip::tell(const QString& text) {
  QWidget* edit = parentWidget();
  const QString before = std::exchange(told_, text.isEmpty() ? QString() : "\n" + text);
  QString tip = edit->toolTip();
  if (before == told_ && tip.contains(before)) return;
  const qsizetype at = before.isEmpty() ? -1 : tip.lastIndexOf(before);
  if (at >= 0) tip.remove(at, before.size());
  edit->setToolTip(tip + told_);
  edit->setAccessibleDescription(text);
}

void MarkStrip::paintEvent(QPaintEvent*) {
  const std::vector<QColor> colours = colours_of(mark_);
  QPainter painter(this);
  const int parts = static_cast<int>(colours.size());
  for (int i = 0; i < parts; ++i) {
    const int top = height() * i / parts;
    painter.fillRect(0, top, width(), height() * (i + 1) / parts - top, colours[static_cast<std::size_t>(i)]);
  }
}

bool MarkStrip::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) setGeometry(0, 0, kWidth, parentWidget()->height());
  return QWidget::eventFilter(watched, event);
}

}  // namespace qv5123
