#include "app/ui/process.h"

#include <dlfcn.h>

#include "base/ui/qt_text.h"

namespace qv5123 {

void use_parent_console() {}

QStringList program_arguments(int argc, char** argv) {
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << native_to_qt(std::string(argv[i]));
  return arguments;
}

// The toolkit brings Fontconfig along, which may be asked from any thread and reads its files once.
std::jthread begin_font_search() {
  auto* read_configuration = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "FcInit"));
  return read_configuration ? std::jthread([=] { read_configuration(); }) : std::jthread();
}

// The session waits for its programs by itself.
void hold_session_end(QSessionManager&) {}

}  // namespace qv5123
