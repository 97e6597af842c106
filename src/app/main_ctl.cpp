#include "cli/command_line.h"

int main(int argc, char** argv) {
  return static_cast<int>(qv5123::run_command_line(argc, argv));
}
