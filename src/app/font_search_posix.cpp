#include "app/font_search.h"

#include <dlfcn.h>

namespace qv5123 {

// The toolkit brings Fontconfig along, which may be asked from any thread and reads its files once.
std::jthread begin_font_search() {
  auto* read_configuration = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "FcInit"));
  return read_configuration ? std::jthread([=] { read_configuration(); }) : std::jthread();
}

}  // namespace qv5123
