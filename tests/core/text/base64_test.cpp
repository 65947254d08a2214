#include "core/text/base64.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace zrl {
namespace {

TEST(Base64, BothWays) {
  const struct {
    std::string_view bytes;
    std::string_view text;
  } cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {{"\0\xff\xfe\xfb", 4}, "AP/++w=="},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(base64_encode(bytes), text);
    EXPECT_EQ(base64_decode(text), bytes) << text;
  }
}

// All lengths around the groups, all bytes, and lines cut at every width.
TEST(Base64, DecodingUndoesEncodingWhereverLinesBreak) {
  std::string bytes;
  for (int i = 0; i < 300; ++i) {
    const std::string text = base64_encode(bytes);
    ASSERT_EQ(text.size(), (bytes.size() + 2) / 3 * 4);
    ASSERT_EQ(base64_decode(text), bytes);
    for (std::size_t width = 1; width < 9; ++width) {
      std::string lines;
      for (std::size_t at = 0; at < text.size(); at += width) lines += text.substr(at, width) + "\r\n";
      ASSERT_EQ(base64_decode(lines), bytes) << lines;
    }
    bytes += static_cast<char>(i * 7);
  }
}

TEST(Base64, DecodingIsTolerant) {
  const struct {
    std::string_view text;
    std::string_view bytes;
  } cases[] = {
      {"Zm9vYg", "foob"},
      {"Zm9vYmE", "fooba"},
      {"Z", ""},
      {"Zm9vY", "foo"},
      {" Z m\t9\r\nv ", "foo"},
      {"Z-m_9.v\xff", "foo"},
      {"====", ""},
      {"=Zm9v", "foo"},
      {"Zg==Zm8=Zm9v", "ffofoo"},
      {{"Zm\0"
        "9v",
        5},
       "foo"},
      {"Zg=", "f"},
  };
  for (const auto& [text, bytes] : cases) EXPECT_EQ(base64_decode(text), bytes) << text;
}

}  // namespace
}  // namespace zrl
