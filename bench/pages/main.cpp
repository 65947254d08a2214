#include <benchmark/benchmark.h>

#include "pages/installed.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  zrl::bench::Suite suite;
  zrl::bench::add_domains(suite);
  zrl::bench::add_replacements(suite);
  zrl::bench::add_iplog(suite);
  zrl::bench::add_message_logs(suite);
  zrl::bench::add_archive(suite);
  zrl::bench::add_header_log(suite);
  zrl::bench::add_lookup(suite);
  return suite.run(5) ? 0 : 1;
}
