#include "base/ui/controls.h"

#include <QComboBox>
#include <QStringList>
#include <QTimer>
#include <memory>
#include <utility>

#include "base/text.h"

namespace qv5123 {
namespace {

QString address_text(int address) {
  return QString::fromStdString(hex(static_cast<unsigned>(address), 2));
}

}  // namespace

QPushButton* push_button(const QString& caption, const QString& tool_tip, QWidget* parent) {
  auto* button = new QPushButton(caption, parent);
  button->setAccessibleName(caption);
  button->setToolTip(tool_tip);
  return button;
}

void on_choice(QComboBox* list, std::function<void(int)> take) {
  auto taken = std::make_shared<bool>(false);
  QObject::connect(list, &QComboBox::currentIndexChanged, list, [list, taken, take](int index) {
    *taken = true;
    QTimer::singleShot(0, list, [taken] { *taken = false; });
    take(index);
  });
  QObject::connect(list, &QComboBox::activated, list, [taken, take](int index) {
    if (!std::exchange(*taken, false)) take(index);
  });
}

QString register_text(int address) {
  return "register " + address_text(address);
}

QString registers_text(const std::vector<int>& addresses) {
  QStringList texts;
  for (const int address : addresses) texts << address_text(address);
  return "registers " + texts.join(", ");
}

}  // namespace qv5123
