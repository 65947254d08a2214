#include <benchmark/benchmark.h>

#include "traffic/log_rows.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  zrl::bench::Suite suite;
  zrl::bench::add_insertions(suite);
  zrl::bench::add_overview(suite);
  zrl::bench::add_messages(suite);
  return suite.run(3) ? 0 : 1;
}
