// The console with two pages more, which have every kind of control.
#include <algorithm>
#include <iostream>
#include <vector>

#include "host/command/command_line.h"
#include "support/all_controls_page.h"
#include "support/tables_page.h"

int main(int argc, char** argv) {
  const auto product = zrl::page_catalogue();
  std::vector<zrl::PageEntry> pages(product.begin(), product.end());
  pages.push_back({"allcontrols", "Test", "All controls", zrl::make_page<zrl::test::AllControlsPage>});
  pages.push_back({"tables", "Test", "Tables", zrl::make_page<zrl::test::TablesPage>});
  zrl::command::Program program{pages, {}};
  program.serve = zrl::command::serve;
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return zrl::command::run_command_line(arguments, program, std::cin, std::cout, std::cerr);
}
