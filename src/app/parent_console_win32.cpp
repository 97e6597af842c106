#include <io.h>
#include <windows.h>

#include <cstdio>

#include "app/parent_console.h"

namespace qv5123 {
namespace {

bool goes_nowhere(std::FILE* stream) {
  return _fileno(stream) < 0;
}

void to_console(std::FILE* stream) {
  std::FILE* reopened = std::freopen("CONOUT$", "w", stream);
  if (reopened != nullptr) std::setvbuf(reopened, nullptr, _IONBF, 0);
}

}  // namespace

void use_parent_console() {
  const bool output = goes_nowhere(stdout);
  const bool errors = goes_nowhere(stderr);
  if ((!output && !errors) || !AttachConsole(ATTACH_PARENT_PROCESS)) return;
  if (output) to_console(stdout);
  if (errors) to_console(stderr);
}

}  // namespace qv5123
