#include "core/text/string_list.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/text/list_pool.h"

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

TEST(StringList, FrozenListsShareTheirTextsUntilOneIsChanged) {
  StringList list = {"one", "two", "three"};
  EXPECT_FALSE(StringList(list).shares_with(list));
  list.freeze();
  // Whatever changes a copy, the others and the arena stay as they are.
  const auto change = [&list](auto&& act) {
    StringList copy = list;
    EXPECT_TRUE(copy.shares_with(list));
    EXPECT_EQ(list.sharers(), 2u);
    act(copy);
    EXPECT_EQ(texts(list), (Texts{"one", "two", "three"}));
    return texts(copy);
  };
  EXPECT_EQ(change([](StringList& copy) { copy.push_back("four"); }), (Texts{"one", "two", "three", "four"}));
  EXPECT_EQ(change([](StringList& copy) { copy.erase(0); }), (Texts{"two", "three"}));
  EXPECT_EQ(change([](StringList& copy) { copy.clear(); }), Texts());
  EXPECT_EQ(
      change([](StringList& copy) { copy.retain([](std::string_view text) { return text != "two"; }); }),
      (Texts{"one", "three"}));
  EXPECT_EQ(change([](StringList& copy) {
              copy.pop_back();
              copy.push_back("");
              copy.push_back("3");
            }),
            (Texts{"one", "two", "", "3"}));
  EXPECT_EQ(list.sharers(), 1u);
  StringList moved = std::move(list);
  EXPECT_TRUE(list.empty());
  list = moved;
  moved = StringList();
  EXPECT_EQ(texts(list), (Texts{"one", "two", "three"}));
}

TEST(StringList, EqualityTellsTextsAndTheirBordersApart) {
  const StringList lists[] = {{}, {""}, {"ab", "c"}, {"a", "bc"}, {"ab", "d"}, {"abc"}, {"ab", "c", ""}};
  for (const StringList& one : lists) {
    for (const StringList& other : lists) {
      EXPECT_EQ(one == other, &one == &other);
      EXPECT_EQ(one.fingerprint() == other.fingerprint(), &one == &other);
    }
  }
}

TEST(ListPool, LetsEqualLongListsShareAndForgetsThemWithTheirHolders) {
  ListPool pool;
  const auto make = [](std::string_view last) {
    StringList list;
    for (int i = 0; i < 40'000; ++i) list.push_back("host" + std::to_string(i) + ".example");
    list.push_back(last);
    return list;
  };
  StringList first = pool.shared(make("end"));
  StringList other = pool.shared(make("another end"));
  EXPECT_FALSE(other.shares_with(first));
  std::vector<std::thread> threads;
  std::vector<StringList> held(4);
  for (StringList& list : held) {
    threads.emplace_back([&] {
      for (int i = 0; i < 20; ++i) {
        list = pool.shared(make("end"));
        StringList changed = list;
        changed.push_back("more");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const StringList& list : held) EXPECT_TRUE(list.shares_with(first));
  EXPECT_EQ(first.sharers(), held.size() + 2);  // and the pool's own
  const StringList copy = first;
  held.clear();
  first.clear();
  pool.tidy();
  EXPECT_EQ(copy.sharers(), 2u);
  EXPECT_EQ(pool.shared({"short"}).sharers(), 0u);
}

}  // namespace
}  // namespace zrl
