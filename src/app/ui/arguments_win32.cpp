#include <QCoreApplication>

#include "app/ui/arguments.h"

namespace qv5123 {

// What main() gets has been through the code page.
QStringList program_arguments(int, char**) {
  return QCoreApplication::arguments();
}

}  // namespace qv5123
