#include <iostream>

#include "host/command/command_line.h"

int main(int argc, char** argv) {
  zrl::command::Program program;
  program.pages = zrl::page_catalogue();
  program.serve = zrl::command::serve;
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return zrl::command::run_command_line(arguments, program, std::cin, std::cout, std::cerr);
}
