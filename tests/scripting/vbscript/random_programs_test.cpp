#include <cstdlib>

#include <gtest/gtest.h>

#include "scripting/vbscript/random_program.h"
#include "scripting/vbscript/script_support.h"

// Where scripts go on after errors, against the model. ZRL_RANDOM_PROGRAMS tells how many programs.
namespace zrl::vbs::test {
namespace {

TEST(RandomProgramsTest, GoOnWhereTheModelDoes) {
  const char* wanted = std::getenv("ZRL_RANDOM_PROGRAMS");
  const int count = wanted ? std::atoi(wanted) : 400;
  int different = 0;
  for (int seed = 0; seed < count; ++seed) {
    const RandomProgram program(static_cast<std::uint64_t>(seed));
    std::vector<std::string> printed = output_of(program.text());
    if (!printed.empty()) printed.back() = shortened(printed.back());
    if (printed == program.expected()) continue;
    ++different;
    if (different > 3) continue;
    std::size_t at = 0;
    const auto& expected = program.expected();
    while (at < printed.size() && at < expected.size() && printed[at] == expected[at]) ++at;
    ADD_FAILURE() << "seed " << seed << ", line " << at + 1 << " of the output is "
                  << (at < printed.size() ? printed[at] : "missing") << ", not "
                  << (at < expected.size() ? expected[at] : "there") << "\n"
                  << program.text();
  }
  EXPECT_EQ(different, 0) << "of " << count << " programs";
}

}  // namespace
}  // namespace zrl::vbs::test
