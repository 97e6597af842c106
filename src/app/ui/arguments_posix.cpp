#include "app/ui/arguments.h"
#include "base/ui/qt_text.h"

namespace qv5123 {

QStringList program_arguments(int argc, char** argv) {
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << native_to_qt(std::string(argv[i]));
  return arguments;
}

}  // namespace qv5123
