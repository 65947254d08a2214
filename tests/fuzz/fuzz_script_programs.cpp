// Random programs about errors: the input chooses the program, and the engine goes on where the model does.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "scripting/vbscript/random_program.h"
#include "scripting/vbscript/script_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::uint64_t seed = 0;
  std::memcpy(&seed, data, std::min(size, sizeof seed));
  const zrl::vbs::test::RandomProgram program(seed);
  std::vector<std::string> printed = zrl::vbs::test::output_of(program.text());
  if (!printed.empty()) printed.back() = zrl::vbs::test::shortened(printed.back());
  if (printed == program.expected()) return 0;
  std::cerr << program.text();
  std::abort();
}
