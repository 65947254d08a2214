#include <boost/json/serialize.hpp>
#include <cstdlib>

#include "command_fixture.h"

namespace zrl::command {
namespace {

using testing::HasSubstr;
namespace json = boost::json;

std::string keys_of(const json::object& table) {
  std::string keys;
  for (const json::value& row : table.at("rows").as_array()) {
    keys += (keys.empty() ? "" : " ") + std::string(row.at("key").as_string());
  }
  return keys;
}

TEST_F(CommandTest, ATableTellsColumnsAndAWindowOfItsRows) {
  const json::object controls = run_do({"tables", "Table1.sort=count desc"}).at("controls").as_object();
  const json::object& table = controls.at("Table1").as_object();
  EXPECT_EQ(table.at("kind"), "Table");
  EXPECT_EQ(json::serialize(table.at("columns").at(3)),
            R"({"name":"count","caption":"Count","kind":"number","sorts":true})");
  EXPECT_EQ(table.at("total"), 4);
  EXPECT_FALSE(table.contains("more"));
  EXPECT_EQ(table.at("sort"), "count desc");
  EXPECT_EQ(table.at("filter"), "");
  EXPECT_EQ(keys_of(table), "c a b d");
  EXPECT_EQ(json::serialize(table.at("rows").at(1)),
            R"({"key":"a","time":"20260105093000","verdict":"rejected","address":"198.51.100.7","count":12,)"
            R"("subject":"<b>Win</b> \"now\"","links":{"subject":{"page":"allcontrols","query":"a/b c"}}})");
  EXPECT_EQ(table.at("rows").at(3).at("count"), "many");
  EXPECT_EQ(table.at("rows").at(3).at("subject").as_string().size(), TableRows::longest_cell);
  EXPECT_EQ(table.at("rows").at(0).at("subject"), "\uFFFD\uFFFD not UTF-8");

  const json::object& many = controls.at("Table2").as_object();
  EXPECT_EQ(many.at("total"), 1'000'000);
  EXPECT_EQ(many.at("rows").as_array().size(), 100u);
}

TEST_F(CommandTest, StepsOnATableActAsAUserWould) {
  json::object result = run_do({"tables", "Table2#3", "Table2.window=2,3", "Table1.key=b, a"});
  EXPECT_EQ(keys_of(result.at("controls").at("Table2").as_object()), "999998 999997 999996");
  EXPECT_EQ(json::serialize(result.at("controls").at("Table2").at("chosen")), R"(["999997"])");
  EXPECT_EQ(result.at("controls").at("echo").at("caption"), "Chosen: Minutes");

  // The same word is a field of the page, and of the table.
  for (const char* step :
       {"filter=12345", "tables.filter=12345", "Table2.filter=12345", "tables.Table2.filter=12345"}) {
    result = run_do({"tables", step});
    EXPECT_EQ(result.at("controls").at("filter").at("text"), "12345") << step;
    EXPECT_EQ(result.at("controls").at("Table2").at("filter"), "12345") << step;
    EXPECT_EQ(result.at("controls").at("Table2").at("total"), 20) << step;
  }
  result = run_do({"tables", "Table2.filter=?"});
  EXPECT_THAT(std::string(result.at("controls").at("Table2").at("problem").as_string()),
              HasSubstr("character 1"));

  const std::pair<const char*, const char*> refused[] = {{"Table1.key=a,x", "no row with the key x"},
                                                         {"Table1#4", "has no row 4"},
                                                         {"Table1.sort=subject", "does not sort"},
                                                         {"Table1=a", "takes no text"},
                                                         {"echo.key=a", "no form echo"}};
  for (const auto& [step, why] : refused) {
    EXPECT_EQ(run({"do", "tables", step}), failure) << step;
    EXPECT_THAT(err, HasSubstr(why));
  }
  EXPECT_EQ(run({"do", "tables", "Table1.window=5"}), usage_error);
  EXPECT_EQ(run({"do", "tables", "Table1.window=-5,1"}), usage_error);
}

TEST_F(CommandTest, LinksAndQueries) {
  const json::object result = run_do({"--query", "777", "tables", "Link1"});
  EXPECT_EQ(json::serialize(result.at("opened")), R"([{"page":"allcontrols","query":"198.51.100.7"}])");
  EXPECT_EQ(result.at("controls").at("Table2").at("filter"), "777");
  const json::object& link = result.at("controls").at("Link1").as_object();
  EXPECT_EQ(link.at("kind"), "Link");
  EXPECT_EQ(link.at("page"), "allcontrols");
  EXPECT_EQ(link.at("query"), "198.51.100.7");
  // Pages without queries ignore one.
  EXPECT_TRUE(run_do({"--query", "'; DROP TABLE konf", "general"}).at("opened").as_array().empty());

  EXPECT_EQ(run({"do", "tables", "Table2.window=0,2", "Table2#1", "Link1"}), success);
  EXPECT_THAT(
      out, HasSubstr(
               "A million rows, 1000000 rows\n        1000000 | row 1000000\n      > 999999 | row 999999\n"));
  EXPECT_THAT(out, HasSubstr("Opened: allcontrols 198.51.100.7\n"));
}

TEST_F(CommandTest, MessagesArePrintedInThreeForms) {
  run({"init"});
  const auto database = (folder.path() / "console/proxy.db").string();
  ASSERT_EQ(std::system(("sqlite3 " + database +
                         " \"INSERT INTO predatalog VALUES (1,'192.0.2.1','=1@x.example','say \"\"no\"\"',2,"
                         "'2026-09-01 08:00:00')\"")
                            .c_str()),
            0);
  EXPECT_EQ(run({"messages"}), success);
  EXPECT_THAT(out, HasSubstr("2026-09-01 08:00:00  rejected  header  192.0.2.1  =1@x.example  -  say"));
  EXPECT_EQ(run({"messages", "--json", "--filter", "from:x.example"}), success);
  const json::value rows = json::parse(out);
  ASSERT_EQ(rows.as_array().size(), 1u);
  EXPECT_EQ(rows.at(0).at("key"), "h1");
  EXPECT_EQ(rows.at(0).at("sender"), "=1@x.example");
  EXPECT_EQ(run({"messages", "--csv", "--since", "2026-09-01"}), success);
  EXPECT_THAT(out, HasSubstr("\"verdict\",\"kind\",\"address\",\"sender\",\"recipient\",\"reason\"\r\n"));
  EXPECT_THAT(out, HasSubstr(",\"'=1@x.example\",\"\","));
  EXPECT_EQ(run({"messages", "--json", "--since", "2026-09-02"}), success);
  EXPECT_EQ(out, "[]\n");
  EXPECT_EQ(run({"messages", "--limit", "0"}), success);
  EXPECT_EQ(run({"messages", "--filter", "foo:x"}), usage_error);
  EXPECT_THAT(err, HasSubstr("\"foo:\" is no field (character 1)"));
  EXPECT_EQ(run({"messages", "--since", "tomorrow"}), usage_error);
  EXPECT_EQ(run({"messages", "--csv", "--json"}), usage_error);
}

}  // namespace
}  // namespace zrl::command
