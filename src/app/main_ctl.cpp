#include "cli/command_line.h"

int main(int argc, char** argv) {
  return qv5123::run_command_line(argc, argv);
}
