#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/web/handler_page.h"
#include "host/web/session_driver.h"

// What the browser is told about tables, links and queries.
namespace zrl::test {
namespace {

class SessionTables : public testing::Test {
 protected:
  SessionTables() { session.show("tables"); }

  json::object cells(std::string_view table, std::uint64_t start, std::uint64_t count,
                     json::object more = {}) {
    json::object message{{"type", "cells"},      {"form", "tables"}, {"control", table},
                         {"request", ++request}, {"start", start},   {"count", count}};
    for (const auto& [name, value] : more) message[name] = value;
    session.send(message);
    json::object answer = session.receive("cells");
    EXPECT_EQ(answer.at("request"), request);
    return answer;
  }
  static std::string keys(const json::object& answer) {
    std::string found;
    for (const json::value& row : answer.at("rows").as_array()) {
      found += (found.empty() ? "" : " ") + std::string(row.at("key").as_string());
    }
    return found;
  }
  const json::value& held(std::string_view control, std::string_view property) {
    return session.held("tables", control, property);
  }

  SessionDriver session{test_pages()};
  std::uint64_t request = 0;
};

TEST_F(SessionTables, AFormTellsDesignAndRevisionAndAWindowItsRows) {
  EXPECT_EQ(held("Table2", "filterField"), "filter");
  EXPECT_EQ(held("Table2", "columns").at(0),
            json::parse(R"({"name": "number", "caption": "Number", "kind": "number",
                                                            "sorts": true})"));
  const json::object few = cells("Table1", 0, 500);
  EXPECT_EQ(few.at("revision"), held("Table1", "rows").at("revision"));
  EXPECT_EQ(few.at("length"), 4);
  EXPECT_EQ(few.at("more"), false);
  EXPECT_EQ(few.at("problem"), "");
  const json::array& first = few.at("rows").at(0).at("cells").as_array();
  EXPECT_TRUE(first[0].at("at").is_int64());
  EXPECT_EQ(first[0].at("text"), "20260105093000");
  EXPECT_EQ(first[1], "rejected");
  EXPECT_EQ(first[4],
            json::parse(R"({"text": "<b>Win</b> \"now\"", "page": "allcontrols", "query": "a/b c"})"));
  EXPECT_EQ(few.at("rows").at(2).at("cells").at(0), "yesterday");
  EXPECT_LT(few.at("rows").at(3).at("cells").at(4).as_string().size(), 1100u);

  const json::object many = cells("Table2", 999'998, 500, {{"key", "999000"}});
  EXPECT_EQ(keys(many), "2 1");
  EXPECT_EQ(many.at("found"), 1000);
  EXPECT_EQ(cells("Table2", 0, 5000).at("rows").as_array().size(), 500u);
  EXPECT_EQ(cells("Table2", 0, 0, {{"key", "x"}}).at("found"), nullptr);
}

TEST_F(SessionTables, RowsAreChosenSortedAndFiltered) {
  const json::array keys_wanted{"b", "a"};
  session.until_done(session.event("tables", "Table1", "keys", {{"keys", keys_wanted}}));
  EXPECT_EQ(held("Table1", "chosen"), keys_wanted);
  EXPECT_EQ(held("echo", "caption"), "Chosen: Minutes");
  const json::value before = held("Table1", "rows");
  session.until_done(session.event("tables", "Table1", "sort", {{"text", "count desc"}}));
  EXPECT_EQ(held("Table1", "sort"), "count desc");
  EXPECT_NE(held("Table1", "rows"), before);
  EXPECT_EQ(keys(cells("Table1", 0, 9)), "c a b d");
  session.until_done(session.event("tables", "Table2", "filter", {{"text", "99999"}}));
  EXPECT_EQ(held("filter", "text"), "99999");
  EXPECT_EQ(cells("Table2", 0, 9).at("length"), 19);
  session.until_done(session.event("tables", "filter", "text", {{"text", "?"}}));
  EXPECT_EQ(cells("Table2", 0, 9).at("problem"), "\"?\" at character 1 means nothing");

  EXPECT_EQ(session.until_error(session.event("tables", "Table1", "keys", {{"keys", {"x"}}})), "refused");
  EXPECT_EQ(session.until_error(session.event("tables", "Table1", "sort", {{"text", "subject"}})), "refused");
  EXPECT_EQ(session.until_error(session.event("tables", "filter", "keys", {{"keys", json::array()}})),
            "refused");
  EXPECT_EQ(session.until_error(session.event("tables", "Table1", "keys", {{"keys", {1}}})), "malformed");
  session.send(json::parse(
      R"({"type": "cells", "form": "tables", "control": "filter", "request": 77, "start": 0, "count": 1})"));
  EXPECT_EQ(session.receive("error").at("request"), 77);
}

TEST_F(SessionTables, LinksAreAskedOfTheBrowserAndQueriesAreKept) {
  session.click("tables", "Link1");
  const json::object go = session.receive("go");
  EXPECT_EQ(go.at("page"), "allcontrols");
  EXPECT_EQ(go.at("query"), "198.51.100.7");
  session.send(json::parse(R"({"type": "open", "page": "tables", "query": "77/8", "seq": 50})"));
  EXPECT_EQ(session.receive("form").at("query"), "77/8");
  EXPECT_EQ(held("echo", "caption"), "Opened with 77/8");
  session.connect();
  EXPECT_EQ(session.receive("form").at("query"), "77/8");
}

}  // namespace
}  // namespace zrl::test
