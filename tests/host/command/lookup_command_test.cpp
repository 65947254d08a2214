#include "command_fixture.h"

namespace zrl::command {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
namespace json = boost::json;

TEST_F(CommandTest, ALookUpTellsWhereSomethingStands) {
  run({"init"});
  run({"do", "domainbw", "checkbw=1"});
  run({"list", "add", "domains.black", "spam.example", "--comment", "a wave", "--expires", "2999-12-31"});
  EXPECT_EQ(run({"lookup", "--json", "spam.example"}), success) << err;
  const json::object told = json::parse(out).as_object();
  EXPECT_EQ(told.at("verdict"),
            "Rejected: \"spam.example\" is on the domain black list until 2999-12-31 (a wave).");
  const json::object& entry = told.at("entries").at(0).as_object();
  EXPECT_EQ(entry.at("list"), "domains.black");
  EXPECT_EQ(entry.at("entry"), "spam.example");
  EXPECT_EQ(entry.at("effective"), "yes");
  EXPECT_EQ(entry.at("comment"), "a wave");
  EXPECT_EQ(entry.at("expires"), "2999-12-31");
  EXPECT_EQ(told.at("counts").as_array().size(), 3U);
  EXPECT_TRUE(told.at("log").as_array().empty());
  EXPECT_TRUE(told.at("dns").as_array().empty());

  EXPECT_EQ(run({"lookup", "spam.example"}), success);
  EXPECT_THAT(out, StartsWith("Rejected: "));
  EXPECT_THAT(out, HasSubstr("Domain black list  domains.black"));
  EXPECT_EQ(run({"lookup", "\x1b[2J"}), success);
  EXPECT_THAT(out, Not(HasSubstr("\x1b")));
  EXPECT_EQ(run({"lookup"}), usage_error);
  run({"registry", "set", "HKLM\\SOFTWARE\\Mirvan\\dataprovider", "REG_SZ", "sqlite:/none/x.db"});
  EXPECT_EQ(run({"lookup", "spam.example"}), failure);
  EXPECT_NE(err, "");
}

}  // namespace
}  // namespace zrl::command
