#include "host/command/step.h"

#include <gtest/gtest.h>

namespace zrl::command {
namespace {

using Kind = Step::Kind;

TEST(Step, IsReadAsItIsWritten) {
  const struct {
    const char* written;
    Kind kind;
    const char* target;
    const char* text;
    std::int64_t index;
  } cases[] = {
      {"Command1", Kind::click, "Command1", "", 0},
      {"transfer.action", Kind::click, "transfer.action", "", 0},
      {"Text1=a=b#c", Kind::text, "Text1", "a=b#c", 0},
      {"Text1=", Kind::text, "Text1", "", 0},
      {"Text1= x ", Kind::text, "Text1", " x ", 0},
      {"transfer.source=/tmp/x.txt", Kind::text, "transfer.source", "/tmp/x.txt", 0},
      {"List1#12", Kind::item, "List1", "12", 12},
      {"Timer1.tick", Kind::tick, "Timer1", "", 0},
      {"transfer.close", Kind::close, "transfer", "", 0},
      {"answer=cancel", Kind::answer, "answer", "cancel", 0},
  };
  for (const auto& [written, kind, target, text, index] : cases) {
    const Step step = parse_step(written);
    EXPECT_EQ(step.kind, kind) << written;
    EXPECT_EQ(step.target, target) << written;
    EXPECT_EQ(step.text, text) << written;
    EXPECT_EQ(step.index, index) << written;
  }
}

TEST(Step, NonsenseIsRefused) {
  for (const char* written : {"", "=x", "#1", "List1#", "List1#-1", "List1#x", "answer=maybe", "answer="}) {
    EXPECT_THROW(parse_step(written), BadStep) << written;
  }
}

}  // namespace
}  // namespace zrl::command
