#include "registers/ui/multiline_list.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>

#include "registers/ui/cell_delegate.h"

namespace qv5123 {
namespace {

constexpr int kBelowText = 3;     // from the tallest text to the end of its row
constexpr int kWheelNotch = 120;  // eighths of a degree
const QString kEmpty = QStringLiteral(" ");

}  // namespace

CMultilineList::CMultilineList(QWidget* parent) : QTableView(parent) {
  auto* cell = new QStandardItem;
  cell->setEditable(false);
  model_.setItemPrototype(cell);
  setModel(&model_);
  auto* delegate = new CellDelegate(this);
  setItemDelegate(delegate);
  connect(delegate, &CellDelegate::edited, this, &CMultilineList::cell_edited);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
  setTabKeyNavigation(false);
  setCornerButtonEnabled(false);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
  horizontalHeader()->setMinimumSectionSize(1);
  horizontalHeader()->setDefaultSectionSize(kDefaultWidth);
  horizontalHeader()->setHighlightSections(false);
  connect(horizontalHeader(), &QHeaderView::sectionResized, this,
          [this](int column, int, int width) { column_dragged(column, width); });
  connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &CMultilineList::scroll_by_line);
  connect(this, &QTableView::doubleClicked, this, [this](const QModelIndex& at) { edit_row(at.row()); });
}

void CMultilineList::set_size(int columns, int rows) {
  if (columns == this->columns() && rows == this->rows()) return;
  const int before = this->columns();
  model_.setColumnCount(std::max(columns, 0));
  model_.setRowCount(std::max(rows, 0));
  for (int column = before; column < this->columns(); ++column)
    model_.setHeaderData(column, Qt::Horizontal, kEmpty);
  // Made here, since one that is not there yet could be edited.
  for (int cell = 0; cell < this->rows() * this->columns(); ++cell)
    model_.itemFromIndex(model_.index(cell / this->columns(), cell % this->columns()));
  std::erase_if(widths_, [this](const auto& width) { return width.first >= this->columns(); });
  heights_.clear();
  change_layout();
}

void CMultilineList::set_column_heading(int column, const QString& heading) {
  if (column < 0 || column >= columns()) return;
  model_.setHeaderData(column, Qt::Horizontal, heading);
}

void CMultilineList::set_column_width(int column, int width) {
  if (column < 0 || column >= columns()) return;
  widths_[column] = std::max(width, 1);
  setColumnWidth(column, widths_[column]);
  heights_.clear();
  change_layout();
}

QString CMultilineList::kept_text() const {
  QStringList widths;
  for (int column = 0; column < columns(); ++column) widths << QString::number(width_of(column));
  return widths.join(u',');
}

void CMultilineList::take_kept(const QString& text) {
  const QStringList widths = text.split(u',');
  for (int column = 0; column < columns() && column < widths.size(); ++column)
    if (const int width = widths[column].toInt(); width > 0) set_column_width(column, width);
}

void CMultilineList::stretch_column(int column) {
  stretched_ = column;
  change_layout();
}

void CMultilineList::set_cell_text(int column, int row, const QString& text) {
  if (column < 0 || column >= columns() || row < 0 || row >= rows()) return;
  if (text == cell_text(column, row)) return;
  model_.setData(model_.index(row, column), text);
  heights_.erase(row);
  change_layout();
}

QString CMultilineList::cell_text(int column, int row) const {
  const QVariant text = model_.index(row, column).data();
  return text.isValid() ? text.toString() : kEmpty;
}

void CMultilineList::set_cell_editable(int column, int row, bool editable, const QStringList& choices) {
  if (column < 0 || column >= columns() || row < 0 || row >= rows()) return;
  const QModelIndex cell = model_.index(row, column);
  model_.setData(cell, choices, CellDelegate::kChoicesRole);
  model_.itemFromIndex(cell)->setEditable(editable);
}

int CMultilineList::selected_row() const {
  const QModelIndexList rows = selectionModel()->selectedRows();
  return rows.isEmpty() ? -1 : rows.first().row();
}

int CMultilineList::row_height(int row) const {
  if (const auto known = heights_.find(row); known != heights_.end()) return known->second;
  constexpr int kMargin = CellDelegate::kTextMargin;
  int tallest = 0;
  for (int column = 0; column < columns(); ++column) {
    // The grid line is the cell's last pixel.
    const QRect room(0, 0, std::max(column_width(column) - 2 * kMargin - 1, 1), QWIDGETSIZE_MAX);
    const QString text = CellDelegate::lines_of(cell_text(column, row));
    tallest = std::max(tallest, fontMetrics().boundingRect(room, CellDelegate::kTextFlags, text).height());
  }
  return heights_[row] = kMargin + tallest + kBelowText;
}

int CMultilineList::total_width() const {
  int width = 0;
  for (int column = 0; column < columns(); ++column) width += width_of(column);
  return width;
}

/// As it was set, before it is stretched.
int CMultilineList::width_of(int column) const {
  const auto set = widths_.find(column);
  return set == widths_.end() ? kDefaultWidth : set->second;
}

int CMultilineList::total_height() const {
  int height = 0;
  for (int row = 0; row < rows(); ++row) height += row_height(row);
  return height;
}

QSize CMultilineList::sizeHint() const {
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
  const int frame = 2 * frameWidth();
  return {total_width() + bar + frame, total_height() + horizontalHeader()->sizeHint().height() + frame};
}

// A refresh sets many cells; they are laid out together.
void CMultilineList::change_layout() {
  if (layout_due_) return;
  layout_due_ = true;
  QTimer::singleShot(0, this, &CMultilineList::lay_out);
}

void CMultilineList::lay_out() {
  if (laying_out_) return;
  laying_out_ = true;
  layout_due_ = false;
  fill_width();
  for (int row = 0; row < rows(); ++row) verticalHeader()->resizeSection(row, row_height(row));
  laying_out_ = false;
}

void CMultilineList::fill_width() {
  if (stretched_ < 0 || stretched_ >= columns()) return;
  const int set = width_of(stretched_);
  const int width = std::max(set + viewport()->width() - total_width(), set / 2);
  if (width == column_width(stretched_)) return;
  setColumnWidth(stretched_, width);
  heights_.clear();
}

void CMultilineList::column_dragged(int column, int width) {
  if (laying_out_) return;
  widths_[column] = width;
  heights_.clear();
  change_layout();
}

// Replaces the fixed step that the scroll bar is about to make by one to a row boundary.
void CMultilineList::scroll_by_line(int action) {
  QScrollBar* bar = verticalScrollBar();
  if (action == QAbstractSlider::SliderSingleStepAdd) {
    int target = 0;
    for (int row = 0; row < rows() && target <= bar->value(); ++row) target += row_height(row);
    bar->setSliderPosition(std::min(target, bar->maximum()));
  } else if (action == QAbstractSlider::SliderSingleStepSub) {
    int target = 0;
    for (int row = 0; row < rows() && target + row_height(row) < bar->value(); ++row)
      target += row_height(row);
    bar->setSliderPosition(target);
  }
}

void CMultilineList::show_row(int row) {
  QScrollBar* bar = verticalScrollBar();
  const int top = verticalHeader()->sectionPosition(row);
  const int last_offset = top + row_height(row) - viewport()->height();
  if (bar->value() < last_offset) bar->setValue(last_offset);
  if (bar->value() > top) bar->setValue(top);
}

void CMultilineList::edit_row(int row) {
  for (int column = 0; column < columns(); ++column) {
    const QModelIndex cell = model_.index(row, column);
    if (!model_.flags(cell).testFlag(Qt::ItemIsEditable)) continue;
    setCurrentIndex(cell);
    return edit(cell);
  }
}

void CMultilineList::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  lay_out();
}

void CMultilineList::showEvent(QShowEvent* event) {
  QTableView::showEvent(event);
  lay_out();
}

void CMultilineList::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  const int row = row_at(event->pos().y());
  QTableView::mousePressEvent(event);
  if (row < 0) {
    clearSelection();
  } else if (row != selected_row()) {
    selectRow(row);
  }
  lay_out();
  if (row >= 0) show_row(row);
  // Told once this press is dealt with, since the owner may change the whole grid in answer.
  QMetaObject::invokeMethod(
      this, [this, row] { emit row_pressed(row); }, Qt::QueuedConnection);
}

void CMultilineList::keyPressEvent(QKeyEvent* event) {
  const bool is_return = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!is_return || state() == EditingState || !currentIndex().isValid())
    return QTableView::keyPressEvent(event);
  edit_row(currentIndex().row());
}

// One line to a notch. Fine-grained wheels send parts of a notch, which are added up.
void CMultilineList::wheelEvent(QWheelEvent* event) {
  const int delta = event->angleDelta().y();
  if (delta == 0) return QTableView::wheelEvent(event);
  if ((delta < 0) != (wheel_ < 0)) wheel_ = 0;
  for (wheel_ += delta; std::abs(wheel_) >= kWheelNotch; wheel_ -= wheel_ < 0 ? -kWheelNotch : kWheelNotch) {
    verticalScrollBar()->triggerAction(wheel_ < 0 ? QAbstractSlider::SliderSingleStepAdd
                                                  : QAbstractSlider::SliderSingleStepSub);
  }
  event->accept();
}

void CMultilineList::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  heights_.clear();
  change_layout();
}

}  // namespace qv5123
