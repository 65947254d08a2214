// The main function of test programs: gtest's, with a limit on the time of each case, so that one that would
// run for ever fails under its own name.
#include <array>
#include <csignal>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

// The longest case takes 5 s, under sanitizers on a busy machine 40.
constexpr unsigned limit_seconds = 150;

std::array<char, 256> message{};  // what a signal handler may write must be there before
std::size_t message_size = 0;

void fail_in_time(int) {
  static_cast<void>(!::write(STDERR_FILENO, message.data(), message_size));
  std::abort();
}

class TimeLimit : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    const std::string text = "\n" + std::string(test.test_suite_name()) + "." + test.name() +
                             " has not ended in " + std::to_string(limit_seconds) + " s\n";
    message_size = text.copy(message.data(), message.size());
    ::alarm(limit_seconds);
  }
  void OnTestEnd(const testing::TestInfo&) override { ::alarm(0); }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  std::signal(SIGALRM, fail_in_time);
  testing::UnitTest::GetInstance()->listeners().Append(new TimeLimit);  // which owns it
  return RUN_ALL_TESTS();
}
