#include <benchmark/benchmark.h>

#include "database/comparison.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  zrl::bench::Suite suite;
  zrl::bench::add_rows(suite);
  zrl::bench::add_statements(suite);
  zrl::bench::add_search(suite);
  zrl::bench::add_imports(suite);
  return suite.run(5) ? 0 : 1;
}
