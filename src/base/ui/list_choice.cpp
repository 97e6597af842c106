#include "base/ui/list_choice.h"

#include <QComboBox>
#include <QTimer>
#include <memory>
#include <utility>

namespace qv5123 {

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

}  // namespace qv5123
