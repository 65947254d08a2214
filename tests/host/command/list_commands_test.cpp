#include <boost/json/serialize.hpp>
#include <fstream>

#include "command_fixture.h"
#include "core/text/files.h"

namespace zrl::command {
namespace {

using testing::HasSubstr;
namespace json = boost::json;

class ListCommandTest : public CommandTest {
 protected:
  ListCommandTest() { run({"init"}); }

  bool is_raised(const std::string& flag) {
    return run({"registry", "get", "HKLM\\SOFTWARE\\Mirvan\\" + flag}) == success && out == "1\n";
  }
  json::value printed() { return json::parse(out); }
};

TEST_F(ListCommandTest, EntriesAreAddedShownAndRemovedByTheNameOfTheirList) {
  EXPECT_EQ(run({"list", "add", "domains.black", "Spam.example", "spam.example", " ", "--comment",
                 "it's a wave", "--expires", "2999-01-31", "--json"}),
            failure);
  EXPECT_EQ(out,
            "{\"list\":\"domains.black\",\"added\":[\"Spam.example\"],\"already\":[\"spam.example\"],"
            "\"refused\":[{\"entry\":\" \",\"reason\":\"nothing is stored: the entry is empty\"}],"
            "\"change\":null}\n");
  EXPECT_TRUE(is_raised("reloadblack"));
  EXPECT_EQ(run({"list", "add", "Domains.Black", "other.example", "-"}), success) << err;
  EXPECT_EQ(out, "added: other.example\nadded: -\n");
  EXPECT_EQ(run({"list", "show", "domains.black", "--filter", "SPAM", "--json"}), success) << err;
  EXPECT_EQ(json::serialize(printed()),
            R"([{"entry":"spam.example","comment":"it's a wave","expires":"2999-01-31"}])");
  EXPECT_EQ(run({"list", "show", "domains.black", "--limit", "1"}), success);
  EXPECT_EQ(out, "spam.example  until 2999-01-31  # it's a wave\n");

  EXPECT_EQ(run({"list", "remove", "domains.black", "SPAM.example", "none.example", "--json"}), failure);
  EXPECT_EQ(out,
            "{\"list\":\"domains.black\",\"removed\":[\"SPAM.example\"],\"missing\":[\"none.example\"],"
            "\"refused\":[],\"change\":null}\n");
  // An entry that comes back has nothing to do with what was noted of the former one.
  run({"list", "add", "domains.black", "spam.example"});
  run({"list", "show", "domains.black", "--filter", "spam", "--json"});
  EXPECT_EQ(json::serialize(printed()), R"([{"entry":"spam.example","comment":"","expires":""}])");

  EXPECT_EQ(run({"list", "--json"}), success) << err;
  EXPECT_EQ(printed().as_array().size(), 21U);
  EXPECT_EQ(json::serialize(printed().at(0)),
            R"({"name":"domains.black","title":"Domain black list","count":3})");
}

// What strangers have put into a list cannot take the terminal over.
TEST_F(ListCommandTest, AddedEntriesLeaveOtherListsAndHostileOnesStayTexts) {
  run({"list", "add", "mails.white", "me@shop.example"});
  run({"list", "add", "domains.white", "shop.example"});
  EXPECT_EQ(run({"list", "add", "mails.black", "Me@Shop.example"}), success);
  for (const char* list : {"mails.white", "domains.white"}) {
    run({"list", "show", list});
    EXPECT_EQ(out, "") << list;
  }
  EXPECT_TRUE(is_raised("reloadauto"));
  run({"list", "add", "keywords.body", "\x1b[2Jx\xff", "'); drop table words; --"});
  run({"list", "show", "keywords.body"});
  EXPECT_EQ(out, "\\x1b[2Jx\\xff\n\\x27); drop table words; --\n");
  EXPECT_EQ(run({"list", "show", "keywords.body", "--json"}), success);
  EXPECT_EQ(printed().as_array().size(), 2U);
}

TEST_F(ListCommandTest, WholeListsGoThroughFilesAndPipes) {
  EXPECT_EQ(
      run({"list", "import", "domains.black", "-"}, "# a comment\na.example\r\nb.example\n\na.example\n"),
      success)
      << err;
  EXPECT_EQ(out, "2 added, 1 already there, 1 comments, 0 lines refused\n");
  EXPECT_TRUE(is_raised("reloadblack"));
  EXPECT_EQ(run({"list", "export", "domains.black", "-"}), success);
  EXPECT_EQ(out, "a.example\nb.example\n");
  const std::string path = (folder.path() / "out.txt").string();
  EXPECT_EQ(run({"list", "export", "domains.black", path}), success) << err;
  EXPECT_EQ(read_file(path), "a.example\nb.example\n");
  EXPECT_EQ(run({"list", "export", "domains.black", path}), failure);
  EXPECT_THAT(err, HasSubstr("already"));
  EXPECT_EQ(run({"list", "import", "ips.black", path}), success);
  EXPECT_EQ(run({"list", "import", "ips.black", (folder.path() / "none").string()}), failure);
  EXPECT_EQ(run({"list", "import", "ips.black", "-"}, std::string("a\0b", 3)), failure);
  // A console's own files are no lists.
  EXPECT_EQ(run({"list", "import", "ips.black", (folder.path() / "console" / "registry.db").string()}),
            failure);
}

TEST_F(ListCommandTest, WrongUsageIsToldFromFailure) {
  const std::vector<std::vector<std::string>> wrong = {
      {"list", "show"},
      {"list", "show", "nolist"},
      {"list", "add", "domains.black"},
      {"list", "add", "domains.black", "x.example", "--expires", "soon"},
      {"list", "add", "domains.black", "x.example", "--comment", std::string(1001, 'x')},
      {"list", "show", "files", "--limit", "many"},
      {"list", "nothing"},
  };
  for (const auto& arguments : wrong) EXPECT_EQ(run(arguments), usage_error) << arguments.back();
  EXPECT_EQ(run({"list", "show", "domains.black"}), success);
  EXPECT_EQ(out, "");
  run({"registry", "set", "HKLM\\SOFTWARE\\Mirvan\\dataprovider", "REG_SZ", "sqlite:/none/x.db"});
  EXPECT_EQ(run({"list", "add", "domains.black", "x.example"}), failure);
  EXPECT_NE(err, "");
}

}  // namespace
}  // namespace zrl::command
