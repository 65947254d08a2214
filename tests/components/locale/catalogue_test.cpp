#include "components/locale/catalogue.h"

#include <gtest/gtest.h>

#include "core/text/error.h"

namespace zrl::locale {
namespace {

TEST(Catalogue, ReadsEntriesContinuationsEscapesAndComments) {
  const Catalogue catalogue = Catalogue::parse(R"(# a comment
msgid ""
msgstr "Language: de\n"

#: somewhere
msgid "Delete"
msgstr "Löschen"
msgid "two\n"
"lines"
msgstr ""
"zwei\n"
"Zeilen"
msgid "say \"hi\" \\ \t"
msgstr "sag \"hallo\""
msgid "missing"
msgstr ""
)");
  EXPECT_EQ(catalogue.size(), 3u);
  EXPECT_EQ(catalogue.translate("Delete"), "Löschen");
  EXPECT_EQ(catalogue.translate("two\nlines"), "zwei\nZeilen");
  EXPECT_EQ(catalogue.translate("say \"hi\" \\ \t"), "sag \"hallo\"");
  EXPECT_EQ(catalogue.translate("missing"), "missing");
  EXPECT_EQ(catalogue.translate(""), "");
}

TEST(Catalogue, AStarStandsForTheRestOfTheText) {
  const Catalogue catalogue = Catalogue::parse(
      "msgid \"Welcome to *\"\nmsgstr \"Willkommen bei *!\"\n"
      "msgid \"Welcome to all\"\nmsgstr \"Willkommen alle\"\n");
  EXPECT_EQ(catalogue.translate("Welcome to Mirvan 5.2"), "Willkommen bei Mirvan 5.2!");
  EXPECT_EQ(catalogue.translate("Welcome to all"), "Willkommen alle");
  EXPECT_EQ(catalogue.translate("Welcome"), "Welcome");
  EXPECT_TRUE(catalogue.has("Welcome to you"));
}

TEST(Catalogue, WhatIsNoCatalogueIsRefusedWithItsLine) {
  for (const char* text : {"msgid \"a", "msgid a\nmsgstr b", "msgstr \"a\"", "nonsense", "msgid \"\\q\"",
                           "msgid \"a\\\"", "\"string first\""}) {
    EXPECT_THROW(Catalogue::parse(text), Error) << text;
  }
  try {
    Catalogue::parse("msgid \"a\"\n\nbad");
    FAIL();
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "message catalogue, line 3: neither msgid nor msgstr nor a string");
  }
}

}  // namespace
}  // namespace zrl::locale
