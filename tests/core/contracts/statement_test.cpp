#include "core/contracts/statement.h"

#include <string>

#include <gtest/gtest.h>

namespace zrl {
namespace {

TEST(Statement, TextIsTheFixedTextWithItsValues) {
  EXPECT_EQ(delete_from("blacklist", "entry", "a.example").text(),
            "DELETE FROM blacklist where entry='a.example'");
  EXPECT_EQ(insert_into("Blackhost", "IPNumber", "192.0.2.1").text(),
            "INSERT INTO Blackhost (IPNumber) VALUES ('192.0.2.1')");
  const Statement update = "UPDATE pop3 set leave=" + number("1") + " where entry='" + value("me,host") + "'";
  EXPECT_EQ(update.text(), "UPDATE pop3 set leave=1 where entry='me,host'");
  EXPECT_EQ(update.fault(), "");
}

TEST(Statement, ShapeIsTheSameForAllValues) {
  EXPECT_EQ(delete_from("words", "entry", "a").skeleton(), delete_from("words", "entry", "bcd").skeleton());
  EXPECT_NE(delete_from("words", "entry", "a").skeleton(), delete_from("swords", "entry", "a").skeleton());
}

TEST(Statement, HostileValuesMakeItMalformed) {
  const std::string hostile[] = {"O'Neil", "'; DROP TABLE konf; --", "''", std::string("a\0b", 3)};
  for (const std::string& text : hostile) {
    const Statement statement = delete_from("words", "entry", text);
    EXPECT_NE(statement.fault(), "") << text;
    EXPECT_EQ(statement.text(), "DELETE FROM words where entry='" + text + "'");
  }
  for (const char* text : {"\"", "\\", "\n", "%", "x\x01y", "\xff", "?1"}) {
    EXPECT_EQ(delete_from("words", "entry", text).fault(), "") << text;
  }
}

TEST(Statement, ARowWithoutATextIsMalformed) {
  for (const char* blank : {"", " ", "\t\r\n "}) {
    EXPECT_NE(insert_into("blacklist", "entry", blank).fault(), "");
    EXPECT_EQ(delete_from("blacklist", "entry", blank).fault(), "");
  }
}

TEST(Statement, ValuesBelongInsideQuotesAndNumbersOutside) {
  EXPECT_NE(("select " + value("x")).fault(), "");
  EXPECT_NE(("select '" + number("1") + "'").fault(), "");
  EXPECT_NE(("set maxsize=" + number("many")).fault(), "");
  EXPECT_NE(("set maxsize=" + number("1 or 1=1")).fault(), "");
  EXPECT_NE(("entry='" + value("x")).fault(), "");
  EXPECT_EQ(("entry='*@" + value("x") + "'").fault(), "");
}

TEST(Statement, SecretsAreInItsTextAndNotInItsPublicText) {
  const Statement update =
      "UPDATE pop3 set [password]='" + secret("pa55") + "' where entry='" + value("me,host") + "'";
  EXPECT_EQ(update.fault(), "");
  EXPECT_EQ(update.text(), "UPDATE pop3 set [password]='pa55' where entry='me,host'");
  EXPECT_EQ(update.public_text(), "UPDATE pop3 set [password]='********' where entry='me,host'");
  EXPECT_NE(("='" + secret("O'Neil") + "'").fault(), "");
}

}  // namespace
}  // namespace zrl
