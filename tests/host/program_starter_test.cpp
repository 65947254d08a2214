#include "host/program_starter.h"

#include <chrono>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/paths.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

TEST(ProgramStarter, ArgumentsReachTheProgramAsTheyStand) {
  test::TemporaryFolder folder;
  const auto script = folder.path() / "tell";
  // Tells its arguments, the signals that it finds blocked, and whether a file of ours is open in it.
  constexpr int ours = 77;
  ASSERT_EQ(::dup2(STDOUT_FILENO, ours), ours);
  std::ofstream(script)
      << "#!/bin/sh\nprintf '%s\\n' \"$@\" > out.new\ngrep SigBlk /proc/self/status >> out.new\n"
         "test -e /proc/self/fd/77 && echo leaked >> out.new\nmv out.new out\n";
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  start_program({script.string() + ".exe", {"$(touch bad)", "a b", ";"}, to_product_path(folder.path())});
  for (int i = 0; i < 200 && !std::filesystem::exists(folder.path() / "out"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
  ::close(ours);
  EXPECT_EQ(read_file(folder.path() / "out"), "$(touch bad)\na b\n;\nSigBlk:\t0000000000000000\n");
}

TEST(ProgramStarter, AMissingProgramIsAnError) {
  EXPECT_THROW(start_program({"no-such-program-here.exe", {"x"}, ""}), Error);
  EXPECT_THROW(start_program({"", {}, ""}), Error);
}

}  // namespace
}  // namespace zrl
