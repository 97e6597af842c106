#include "app/ui/column_drawer.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QToolButton>

#include "app/ui/control_column.h"

namespace qv5123 {
namespace {

constexpr int kHandleWidth = 12;

int width_of(ColumnShape shape) {
  return shape == ColumnShape::console ? ControlColumn::kConsoleWidth : ControlColumn::kWidth;
}

}  // namespace

ColumnDrawer::ColumnDrawer(ControlColumn* column)
    : column_(column), area_(new QScrollArea), handle_(new QToolButton) {
  handle_->setFixedWidth(kHandleWidth);
  handle_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
  handle_->setAutoRaise(true);
  handle_->setFocusPolicy(Qt::NoFocus);
  handle_->setAccessibleName("Fold the column");
  handle_->setToolTip("The whole column, its console alone, or nothing of it (F9)");
  connect(handle_, &QToolButton::clicked, this, &ColumnDrawer::choose_next);
  area_->setFrameShape(QFrame::NoFrame);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area_->setWidgetResizable(true);
  area_->setFocusPolicy(Qt::NoFocus);
  area_->setWidget(column);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(handle_);
  row->addWidget(area_);
  take_shape(ColumnShape::whole);
}

void ColumnDrawer::restore(int chosen) {
  if (chosen >= 0 && chosen <= static_cast<int>(ColumnShape::folded))
    choose(static_cast<ColumnShape>(chosen));
}

void ColumnDrawer::choose_next() {
  switch (shape_) {
    case ColumnShape::whole:
      return choose(ColumnShape::console);
    case ColumnShape::console:
      return choose(ColumnShape::folded);
    case ColumnShape::folded:
      return choose(ColumnShape::whole);
  }
}

void ColumnDrawer::choose(ColumnShape shape) {
  chosen_ = shape;
  if (shape != shape_) take_shape(shape);
}

void ColumnDrawer::leave_room(int has, int needs) {
  if (chosen_) return;
  const bool fits = needs + kHandleWidth + ControlColumn::kWidth <= has;
  const ColumnShape wanted = fits ? ColumnShape::whole : ColumnShape::folded;
  if (wanted != shape_) take_shape(wanted);
}

void ColumnDrawer::take_shape(ColumnShape shape) {
  shape_ = shape;
  column_->show_commands(shape == ColumnShape::whole);
  area_->setFixedWidth(width_of(shape));
  area_->setVisible(shape != ColumnShape::folded);
  handle_->setArrowType(shape == ColumnShape::folded ? Qt::LeftArrow : Qt::RightArrow);
  emit shape_changed();
}

}  // namespace qv5123
