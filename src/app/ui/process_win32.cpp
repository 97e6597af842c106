#include "app/ui/process.h"

#include <QCoreApplication>
#include <QSessionManager>

#include <io.h>
#include <windows.h>

#include <cstdio>

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

// What main() gets has been through the code page.
QStringList program_arguments(int, char**) {
  return QCoreApplication::arguments();
}

std::jthread begin_font_search() {
  return {};
}

// A program that agrees is ended on the spot. The system goes on by itself once this one is gone.
void hold_session_end(QSessionManager& session) {
  session.cancel();
}

}  // namespace qv5123
