#include "registers/ui/spin_arrows.h"

#include <QToolButton>
#include <QVBoxLayout>

namespace qv5123 {
namespace {

QToolButton* arrow(Qt::ArrowType type, const QString& name, const QString& tip) {
  auto* button = new QToolButton;
  button->setArrowType(type);
  button->setAutoRepeat(true);
  button->setFocusPolicy(Qt::NoFocus);  // the edit beside it has the same on its arrow keys
  button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
  button->setAccessibleName(name);
  button->setToolTip(tip);
  return button;
}

}  // namespace

SpinArrows::SpinArrows(const QString& name, QWidget* parent) : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  QToolButton* up = arrow(Qt::UpArrow, name + " up", name + " + 1");
  QToolButton* down = arrow(Qt::DownArrow, name + " down", name + " - 1");
  layout->addWidget(up);
  layout->addWidget(down);
  connect(up, &QToolButton::clicked, this, [this] { emit stepped(1); });
  connect(down, &QToolButton::clicked, this, [this] { emit stepped(-1); });
  setFixedWidth(fontMetrics().height() + 4);
  for (QToolButton* button : {up, down}) button->setFixedWidth(width());
}

}  // namespace qv5123
