#include <iostream>

#include "host/command/command_line.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return zrl::command::run_command_line(arguments, {zrl::page_catalogue(), {}}, std::cin, std::cout,
                                        std::cerr);
}
