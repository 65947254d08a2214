#include "core/text/string_list.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zrl {
namespace {

std::vector<std::string> texts(const StringList& list) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < list.size(); ++i) result.emplace_back(list[i]);
  return result;
}

using Texts = std::vector<std::string>;

TEST(StringList, KeepsTextsOfAnyContent) {
  StringList list;
  const Texts expected = {"", "a", std::string("zero\0byte", 9), std::string(100'000, 'x'), ""};
  for (const std::string& text : expected) list.push_back(text);
  EXPECT_EQ(texts(list), expected);
}

TEST(StringList, EraseAndPopKeepTheRest) {
  StringList list = {"one", "", "three", "four"};
  list.erase(0);
  EXPECT_EQ(texts(list), (Texts{"", "three", "four"}));
  list.erase(2);
  EXPECT_EQ(texts(list), (Texts{"", "three"}));
  list.pop_back();
  list.push_back("five");
  EXPECT_EQ(texts(list), (Texts{"", "five"}));
  list.erase(0);
  list.erase(0);
  EXPECT_TRUE(list.empty());
}

TEST(StringList, RetainCompactsInPlace) {
  StringList list = {"a@x", "b", "", "c@y", "d"};
  list.retain([](std::string_view text) { return text.find('@') == text.npos; });
  EXPECT_EQ(texts(list), (Texts{"b", "", "d"}));
  list.push_back("e");
  EXPECT_EQ(list[3], "e");
}

TEST(StringList, CopiesAndMovesAreIndependent) {
  StringList list = {"one", "two"};
  StringList copy = list;
  copy.push_back("three");
  EXPECT_EQ(texts(list), (Texts{"one", "two"}));
  StringList moved = std::move(copy);
  EXPECT_EQ(texts(moved), (Texts{"one", "two", "three"}));
  moved = list;
  EXPECT_EQ(texts(moved), (Texts{"one", "two"}));
  EXPECT_EQ(moved.find("two"), 1u);
  EXPECT_EQ(moved.find("none"), moved.size());
}

TEST(StringList, AMillionEntriesCostLittleMoreThanTheirTextAndOffsets) {
  StringList list;
  std::size_t needed = 0;
  for (int i = 0; i < 1'000'000; ++i) {
    const std::string text = "host" + std::to_string(i) + ".example";
    needed += text.size() + sizeof(std::uint32_t);
    list.push_back(text);
  }
  EXPECT_EQ(list[999'999], "host999999.example");
  EXPECT_LT(list.memory(), needed * 3 / 2);
}

}  // namespace
}  // namespace zrl
