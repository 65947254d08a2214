#include "core/list_changes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/list_catalogue.h"
#include "core/text/text.h"
#include "support/installed_console.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = EntryChange::State;

struct Client final : DatabaseClient {
  using DatabaseClient::DatabaseClient;
};

class ListChangesTest : public testing::Test, public test::InstalledConsole {
 protected:
  ListChangesTest() {
    client.connect_database();
    forget_activity();
  }

  EntryChange add(std::string_view list, std::string_view text) {
    return add_entry(client, console, find_list(list)->table, text);
  }
  EntryChange remove(std::string_view list, std::string_view text, IfMissing missing = IfMissing::act) {
    return remove_entry(client, console, find_list(list)->table, text, missing);
  }
  std::vector<std::string> entries(std::string_view list) {
    const ListTable& table = find_list(list)->table;
    return rows(table.table, table.column);
  }

  Client client{console};
};

// Once more is told apart, whether or not the list then has it twice; a capital letter makes no other entry.
TEST_F(ListChangesTest, EveryListTakesItsKindOfEntryAndTellsOneThatIsThereAlready) {
  const struct {
    const char* list;
    const char* text;
    const char* stored;
    const char* again;
    std::size_t rows_then = 1;
  } cases[] = {
      {"domains.black", " Spam.example ", "Spam.example", "spam.EXAMPLE"},
      {"domains.white", "O'Neil", "O\\x27Neil", "o'neil"},
      {"domains.local", " here.example", "here.example", "HERE.example"},
      {"domains.except", "except.example ", "except.example", "except.example", 2},
      {"ips.black", "192.0.2.1", "192.0.2.1", "192.0.2.1"},
      {"ips.white", "192.0.2.2", "192.0.2.2", "192.0.2.2"},
      {"ips.local", " 192.0.2.3", "192.0.2.3", "192.0.2.3"},
      {"subnets.black", " 192.0.2.0/ 08", "192.0.2.0/8", "192.0.2.0/8", 2},
      {"subnets.white", "198.51.100.0/24", "198.51.100.0/24", "198.51.100.0/+24", 2},
      {"mails.black", " Me@Spam.example", "me@spam.example", "ME@spam.example", 2},
      {"mails.white", "You@Good.example", "you@good.example", "you@good.example", 2},
      {"mails.except", " Boss@Here.example", "Boss@Here.example", "boss@here.example", 2},
      {"users.local", "Ann@There.example ", "ann@there.example", "ann@there.example", 2},
      {"keywords.subject", " cheap \"pills\" ", "cheap \\x22pills\\x22", "Cheap \"pills\""},
      {"keywords.body", "REGEX[a b]", "REGEX[a b]", "REGEX[a b]"},
      {"keywords.subject-white", "[list] 1", "[list] 1", "[LIST] 1"},
      {"zones.black", " bl.example ", "bl.example", "bl.example"},
      {"zones.white", "wl.example", "wl.example", "wl.example"},
      {"zones.uri", "uri.example", "uri.example", "uri.example"},
      {"files", " Rechnung\u00c4.EXE", "rechnung\u00e4.exe", "RECHNUNG\u00c4.exe"},
      {"extensions", "EXE", "exe", "Exe"},
  };
  ASSERT_EQ(std::size(cases), known_lists().size());
  for (const auto& [list, text, stored, again, rows_then] : cases) {
    SCOPED_TRACE(list);
    const EntryChange first = add(list, text);
    EXPECT_EQ(first.state, State::added);
    EXPECT_EQ(first.entry, stored);
    ASSERT_THAT(entries(list), testing::Contains(stored));
    EXPECT_EQ(add(list, again).state, State::already);
    const std::vector<std::string> then = entries(list);
    EXPECT_EQ(std::ranges::count_if(then, [&](const auto& e) { return lower(e) == lower(stored); }),
              static_cast<std::ptrdiff_t>(rows_then));
  }
  EXPECT_EQ(console.activity().failures(), 0U);
  EXPECT_THAT(entries("domains.local"), ElementsAre("HERE.example", "there.example"));
}

TEST_F(ListChangesTest, WhatAListDoesNotTakeIsRefusedWithAReasonAndNothingIsStored) {
  const std::pair<const char*, const char*> cases[] = {
      {"domains.black", " "},
      {"domains.local", "192.0.2.1"},
      {"domains.except", "a@b.example"},
      {"ips.black", " 192.0.2.1"},
      {"ips.white", "192.0.2.256"},
      {"ips.local", "here.example"},
      {"subnets.white", "1.2.3.4/33"},
      {"subnets.black", "1.2.3.4 /8"},
      {"mails.black", "nobody"},
      {"mails.white", "o'neil@x.example"},
      {"mails.except", "x.example"},
      {"users.local", "o'neil@x.example"},
      {"keywords.subject", ""},
      {"keywords.body", " "},
      {"keywords.subject-white", " "},
      {"zones.black", "it's"},
      {"zones.uri", ""},
      {"files", " "},
      {"extensions", ".exe"},
  };
  for (const auto& [list, text] : cases) {
    const EntryChange change = add(list, text);
    EXPECT_EQ(change.state, State::refused) << list;
    EXPECT_NE(change.reason, "") << list;
    EXPECT_THAT(entries(list), IsEmpty()) << list;
  }
  EXPECT_THAT(entries("domains.local"), IsEmpty());
  // A list that is none of the proxy's.
  EXPECT_EQ(add_entry(client, console, {"x", "konf", "ID"}, "checkbw").state, State::refused);
}

TEST_F(ListChangesTest, RemovalCountsTheRowsOfTheListAndTakesWhatGoesWithTheEntry) {
  execute(
      "INSERT INTO blacklist (entry) VALUES ('a.example'), ('A.example'), ('@*a.example'), ('b.example')");
  EXPECT_EQ(remove("domains.black", " a.example").removed, 3U);
  EXPECT_THAT(entries("domains.black"), ElementsAre("b.example"));
  EXPECT_THAT(activity(), ElementsAre(console.settings().path_of("reloadblack") + "=1",
                                      "DELETE FROM blacklist where entry='a.example'",
                                      "DELETE FROM blacklist where entry='@*a.example'"));

  execute("INSERT INTO blackmail (entry) VALUES ('\u00c4@x.example'), ('\u00e4@X.example')");
  EXPECT_EQ(remove("mails.black", "\u00c4@x.example").removed, 2U);
  EXPECT_THAT(entries("mails.black"), IsEmpty());

  // Users are removed as they are written, and stay where they belong to.
  add("users.local", "ann@here.example");
  EXPECT_EQ(remove("users.local", "ann").state, State::refused);
  EXPECT_EQ(remove("users.local", " Ann@here.example").state, State::removed);
  EXPECT_THAT(entries("domains.local"), ElementsAre("here.example"));
}

TEST_F(ListChangesTest, NamingOneListTakesNothingOffAnotherAlone) {
  add("ips.white", "192.0.2.1");
  add("subnets.white", "192.0.2.0/24");
  add("extensions", "exe");
  forget_activity();
  for (const auto& [list, entry] :
       {std::pair("ips.black", "192.0.2.1"), {"subnets.black", "192.0.2.0/24"}, {"files", "exe"}}) {
    EXPECT_EQ(remove(list, entry, IfMissing::leave).state, State::missing) << list;
  }
  EXPECT_THAT(activity(), IsEmpty());
  // The pages have one button for both.
  EXPECT_EQ(remove("ips.black", "192.0.2.1").state, State::missing);
  EXPECT_THAT(entries("ips.white"), IsEmpty());
}

TEST_F(ListChangesTest, WithoutADatabaseEachStatementFailsAndNothingIsClaimed) {
  client.drop_database();
  const EntryChange added = add("domains.black", "a.example");
  EXPECT_EQ(added.state, State::refused);
  EXPECT_NE(added.reason, "");
  EXPECT_EQ(remove("domains.black", "a.example").state, State::missing);
  EXPECT_EQ(console.activity().failures(), 7U);
}

}  // namespace
}  // namespace zrl
