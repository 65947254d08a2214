#include "core/text/script_content.h"

#include <gtest/gtest.h>

namespace zrl {
namespace {

using namespace std::string_view_literals;

TEST(ScriptContent, ComesBackAsItWas) {
  for (const std::string_view text :
       {"Function f(x)\r\nEnd Function\r\n"sv, "größer \xE2\x82\xAC \xF0\x9F\x98\x80 \xEF\xBF\xBF"sv,
        "a\0b"sv, ""sv}) {
    EXPECT_EQ(from_script_content(to_script_content(text)), text);
  }
  EXPECT_EQ(to_script_content("\xC3\xA4"
                              "b"),
            "\xE4\0b\0"sv);
}

TEST(ScriptContent, ReadsBytesThatNobodyWroteWell) {
  const std::string lost = "\xEF\xBF\xBD";
  EXPECT_EQ(from_script_content("a\0\0\xD8"sv), "a" + lost);  // a high half at the end
  EXPECT_EQ(from_script_content("\0\xD8"
                                "b\0"sv),
            lost + "b");                                          // and before another character
  EXPECT_EQ(from_script_content("\0\xDC\0\xD8"sv), lost + lost);  // the wrong way round
  EXPECT_EQ(from_script_content("a\0b"sv), "a" + lost);           // a byte too many
}

}  // namespace
}  // namespace zrl
