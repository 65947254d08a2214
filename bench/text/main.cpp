#include <benchmark/benchmark.h>

#include "text/text_bench.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  zrl::bench::Suite suite;
  zrl::bench::add_base64(suite);
  zrl::bench::add_regexps(suite);
  zrl::bench::add_keywords(suite);
  return suite.run(9) ? 0 : 1;
}
