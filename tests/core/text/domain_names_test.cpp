#include "core/text/domain_names.h"

#include <string>

#include <gtest/gtest.h>

namespace zrl {
namespace {

using namespace std::string_literals;

TEST(DomainNames, EachRuleAllowsMoreThanTheOneBefore) {
  const std::string label(63, 'a');
  const std::string longest = label + "." + label + "." + label + "." + std::string(61, 'b');
  ASSERT_EQ(longest.size(), 253U);
  const struct {
    std::string name;
    int rules;  // how many of them it passes, from the last
  } cases[] = {
      {"mail.example.com", 4},
      {"a", 4},
      {"xn--bcher-kva.example", 4},
      {"a_b.1-2.C", 4},
      {longest, 4},
      {"-a.example", 3},
      {"a-.example", 3},
      {"a.-", 3},
      {"a b.example", 2},
      {"b\xC3\xBC.de", 2},
      {"a\0b"s, 1},
      {"", 0},
      {".", 0},
      {".a", 0},
      {"a.", 0},
      {"a..b", 0},
      {label + "a.example", 0},
      {longest + "b", 0},
      {std::string(300, 'a'), 0},
  };
  for (const auto& [name, rules] : cases) {
    EXPECT_EQ(is_host_name(name), rules >= 4) << name;
    EXPECT_EQ(is_domain_name(name), rules >= 3) << name;
    EXPECT_EQ(is_dns_name(name), rules >= 2) << name;
    EXPECT_EQ(has_dns_lengths(name), rules >= 1) << name;
  }
}

}  // namespace
}  // namespace zrl
