#include "host/program_output.h"

#include <gtest/gtest.h>

#include "core/text/error.h"

namespace zrl {
namespace {

using std::chrono::seconds;

TEST(ProgramOutput, IsWhatTheProgramWroteOnBothFiles) {
  const auto result =
      program_output({"sh.exe", {"-c", "echo out; cat; echo err >&2; exit 3"}, ""}, seconds(30));
  EXPECT_EQ(result.text, "out\nerr\n");
  EXPECT_EQ(result.exit_status, 3);
  EXPECT_EQ(program_output({"sh", {"-c", "kill -9 $$"}, ""}, seconds(30)).exit_status, 128 + 9);
  EXPECT_THROW(program_output({"no-such-program-here", {}, ""}, seconds(30)), Error);
}

TEST(ProgramOutput, IsBounded) {
  EXPECT_EQ(program_output({"head", {"-c", "3000000", "/dev/zero"}, ""}, seconds(30)).text.size(), 65536u);
}

TEST(ProgramOutput, AProgramThatDoesNotEndIsEnded) {
  const auto begin = std::chrono::steady_clock::now();
  for (const char* script :
       {"exec sleep 600", "exec cat /dev/zero", "exec >/dev/null 2>&1; exec sleep 600"}) {
    EXPECT_THROW(program_output({"sh", {"-c", script}, ""}, std::chrono::milliseconds(200)), Error) << script;
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds(30));
}

}  // namespace
}  // namespace zrl
