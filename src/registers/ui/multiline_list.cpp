#include "registers/ui/multiline_list.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QWheelEvent>

namespace qv5123 {
namespace {

constexpr int kTextMargin = 2;    // around a cell's text
constexpr int kBelowText = 3;     // from the tallest text to the end of its row
constexpr int kWheelNotch = 120;  // eighths of a degree
// Neither mnemonics nor tabs mean anything in a cell.
constexpr int kTextFlags = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop;

// Painting knows line feeds only.
QString lines_of(QString text) {
  return text.replace(QLatin1String("\r\n"), QLatin1String("\n"))
      .replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

}  // namespace

CMultilineList::CMultilineList(QWidget* parent)
    : QAbstractScrollArea(parent), header_(new QHeaderView(Qt::Horizontal, this)) {
  header_->setModel(&header_model_);
  header_->setDefaultAlignment(Qt::AlignCenter);
  header_->setMinimumSectionSize(1);
  header_->setFocusPolicy(Qt::NoFocus);
  connect(header_, &QHeaderView::sectionResized, this,
          [this](int column, int, int width) { column_dragged(column, width); });
  connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &CMultilineList::scroll_by_line);
  setFocusPolicy(Qt::StrongFocus);
}

void CMultilineList::set_size(int columns, int rows) {
  if (columns == columns_ && rows == rows_) return;
  columns_ = std::max(columns, 0);
  rows_ = std::max(rows, 0);
  std::erase_if(cells_, [this](const auto& cell) {
    return cell.first.first >= columns_ || cell.first.second >= rows_;
  });
  std::erase_if(column_table_, [this](const auto& column) { return column.first >= columns_; });
  heights_.clear();
  if (selected_row_ >= rows_) selected_row_ = -1;
  change_layout();
}

void CMultilineList::set_column_heading(int column, const QString& heading) {
  if (column < 0 || column >= columns_) return;
  column_table_[column].heading = heading;
  change_layout();
}

QString CMultilineList::column_heading(int column) const {
  const auto found = column_table_.find(column);
  return found == column_table_.end() ? Column().heading : found->second.heading;
}

void CMultilineList::set_column_width(int column, int width) {
  if (column < 0 || column >= columns_) return;
  column_table_[column].width = std::max(width, 1);
  heights_.clear();
  change_layout();
}

int CMultilineList::column_width(int column) const {
  const auto found = column_table_.find(column);
  return found == column_table_.end() ? kDefaultWidth : found->second.width;
}

void CMultilineList::set_cell_text(int column, int row, const QString& text) {
  if (column < 0 || column >= columns_ || row < 0 || row >= rows_) return;
  if (text == cell_text(column, row)) return;
  cells_[{column, row}] = text;
  heights_.erase(row);
  change_layout();
}

QString CMultilineList::cell_text(int column, int row) const {
  const auto found = cells_.find({column, row});
  return found == cells_.end() ? QStringLiteral(" ") : found->second;
}

int CMultilineList::row_height(int row) const {
  if (const auto known = heights_.find(row); known != heights_.end()) return known->second;
  int tallest = 0;
  for (int column = 0; column < columns_; ++column) {
    const QRect room(0, 0, std::max(column_width(column) - 2 * kTextMargin, 1), QWIDGETSIZE_MAX);
    const QRect text = fontMetrics().boundingRect(room, kTextFlags, lines_of(cell_text(column, row)));
    tallest = std::max(tallest, text.height());
  }
  return heights_[row] = kTextMargin + tallest + kBelowText;
}

int CMultilineList::row_top(int row) const {
  int top = 0;
  for (int i = 0; i < row; ++i) top += row_height(i);
  return top;
}

int CMultilineList::total_width() const {
  int width = 0;
  for (int column = 0; column < columns_; ++column) width += column_width(column);
  return width;
}

int CMultilineList::row_at(int y) const {
  int bottom = -verticalScrollBar()->value();
  if (y < bottom) return -1;
  for (int row = 0; row < rows_; ++row) {
    bottom += row_height(row);
    if (y < bottom) return row;
  }
  return -1;
}

QSize CMultilineList::sizeHint() const {
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
  const int frame = 2 * frameWidth();
  return {total_width() + bar + frame, total_height() + header_->sizeHint().height() + frame};
}

// A refresh sets many cells; they are laid out together.
void CMultilineList::change_layout() {
  viewport()->update();
  if (layout_due_) return;
  layout_due_ = true;
  QTimer::singleShot(0, this, &CMultilineList::lay_out);
}

void CMultilineList::lay_out() {
  if (laying_out_) return;
  laying_out_ = true;
  layout_due_ = false;
  lay_out_header();
  lay_out_scroll_bars();
  viewport()->update();
  laying_out_ = false;
}

void CMultilineList::lay_out_header() {
  header_model_.setColumnCount(columns_);
  for (int column = 0; column < columns_; ++column) {
    if (header_model_.headerData(column, Qt::Horizontal).toString() != column_heading(column)) {
      header_model_.setHeaderData(column, Qt::Horizontal, column_heading(column));
    }
    if (header_->sectionSize(column) != column_width(column)) {
      header_->resizeSection(column, column_width(column));
    }
  }
  const int height = header_->sizeHint().height();
  setViewportMargins(0, height, 0, 0);
  const QRect area = viewport()->geometry();
  header_->setGeometry(area.left(), area.top() - height, area.width(), height);
  header_->setOffset(horizontalScrollBar()->value());
}

// Each bar takes room from the other direction, so the second one may make the first one needed.
void CMultilineList::lay_out_scroll_bars() {
  QSize area = maximumViewportSize();
  const bool tall = total_height() > area.height();
  if (tall) area.rwidth() -= verticalScrollBar()->sizeHint().width();
  if (total_width() > area.width()) area.rheight() -= horizontalScrollBar()->sizeHint().height();
  if (!tall && total_height() > area.height()) area.rwidth() -= verticalScrollBar()->sizeHint().width();
  verticalScrollBar()->setPageStep(area.height());
  verticalScrollBar()->setRange(0, std::max(total_height() - area.height(), 0));
  horizontalScrollBar()->setPageStep(area.width());
  horizontalScrollBar()->setSingleStep(fontMetrics().averageCharWidth() * 2);
  horizontalScrollBar()->setRange(0, std::max(total_width() - area.width(), 0));
}

void CMultilineList::column_dragged(int column, int width) {
  if (laying_out_ || column >= columns_) return;
  set_column_width(column, width);
}

// Replaces the fixed step that the scroll bar is about to make by one to a row boundary.
void CMultilineList::scroll_by_line(int action) {
  QScrollBar* bar = verticalScrollBar();
  if (action == QAbstractSlider::SliderSingleStepAdd) {
    int target = 0;
    for (int row = 0; row < rows_ && target <= bar->value(); ++row) target += row_height(row);
    bar->setSliderPosition(std::min(target, bar->maximum()));
  } else if (action == QAbstractSlider::SliderSingleStepSub) {
    int target = 0;
    for (int row = 0; row < rows_ && target + row_height(row) < bar->value(); ++row)
      target += row_height(row);
    bar->setSliderPosition(target);
  }
}

void CMultilineList::show_row(int row) {
  QScrollBar* bar = verticalScrollBar();
  const int top = row_top(row);
  const int last_offset = top + row_height(row) - viewport()->height();
  if (bar->value() < last_offset) bar->setValue(last_offset);
  if (bar->value() > top) bar->setValue(top);
}

void CMultilineList::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), palette().color(QPalette::Base));
  int top = -verticalScrollBar()->value();
  for (int row = 0; row < rows_ && top < viewport()->height(); ++row) {
    const int height = row_height(row);
    if (top + height > 0) {
      paint_row(painter, QRect(-horizontalScrollBar()->value(), top, total_width(), height), row);
    }
    top += height;
  }
}

void CMultilineList::paint_row(QPainter& painter, const QRect& row_rect, int row) const {
  const bool selected = row == selected_row_;
  if (selected) painter.fillRect(row_rect, palette().color(QPalette::Highlight));
  const QColor text = palette().color(selected ? QPalette::HighlightedText : QPalette::Text);
  const QColor grid = palette().color(QPalette::Mid);
  QRect cell = row_rect;
  for (int column = 0; column < columns_; ++column) {
    cell.setWidth(column_width(column));
    const QRect inside = cell.adjusted(kTextMargin, kTextMargin, -kTextMargin, -kTextMargin);
    painter.save();
    painter.setClipRect(cell);
    painter.setPen(text);
    painter.drawText(inside, kTextFlags, lines_of(cell_text(column, row)));
    painter.restore();
    painter.setPen(grid);
    painter.drawLine(cell.topRight(), cell.bottomRight());
    cell.moveLeft(cell.right() + 1);
  }
  painter.setPen(grid);
  painter.drawLine(row_rect.bottomLeft(), row_rect.bottomRight());
}

void CMultilineList::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  lay_out();
}

void CMultilineList::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  lay_out();
}

void CMultilineList::scrollContentsBy(int, int) {
  header_->setOffset(horizontalScrollBar()->value());
  viewport()->update();
}

void CMultilineList::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  selected_row_ = row_at(event->pos().y());
  lay_out();
  if (selected_row_ >= 0) show_row(selected_row_);
  // Told once this press is dealt with, since the owner may change the whole grid in answer.
  QMetaObject::invokeMethod(
      this, [this, row = selected_row_] { emit row_pressed(row); }, Qt::QueuedConnection);
}

// One line to a notch. Fine-grained wheels send parts of a notch, which are added up.
void CMultilineList::wheelEvent(QWheelEvent* event) {
  const int delta = event->angleDelta().y();
  if (delta == 0) return QAbstractScrollArea::wheelEvent(event);
  if ((delta < 0) != (wheel_ < 0)) wheel_ = 0;
  for (wheel_ += delta; std::abs(wheel_) >= kWheelNotch; wheel_ -= wheel_ < 0 ? -kWheelNotch : kWheelNotch) {
    verticalScrollBar()->triggerAction(wheel_ < 0 ? QAbstractSlider::SliderSingleStepAdd
                                                  : QAbstractSlider::SliderSingleStepSub);
  }
  event->accept();
}

void CMultilineList::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  heights_.clear();
  change_layout();
}

}  // namespace qv5123
