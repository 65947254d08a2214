#include "host/sample/sample_data.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/text.h"
#include "core/text/utf16.h"
#include "core/text/utf8.h"
#include "host/command/command_line.h"
#include "host/sample/encoding.h"
#include "host/sample/lists.h"
#include "host/sample/mails.h"
#include "host/sample/scripts.h"
#include "support/installed_console.h"

namespace zrl::sample {
namespace {

using test::InstalledConsole;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Column {
  Literal table;
  Literal name;
};

struct Pair {
  Literal left;
  Literal right;
};

using Counts = std::map<std::string, std::size_t>;

constexpr std::chrono::local_seconds end_of_logs =
    std::chrono::local_days(std::chrono::year(2026) / 10 / 1) - std::chrono::seconds(1);

bool fill(Console& console, Counts& counts) {
  return fill_sample_data(console, end_of_logs, [&](std::string_view table, std::size_t rows) {
    counts[std::string(table)] = rows;
  });
}

// The filled console, made once: its tests only read.
class SampleData : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    installed = std::make_unique<InstalledConsole>();
    ASSERT_TRUE(fill(installed->console, counts));
    database = installed->console.components().create<Database>();
    conn = database->open_database("sqlite:proxy.db");
  }
  static void TearDownTestSuite() {
    conn.reset();
    database.reset();
    installed.reset();
  }

  static std::set<std::string> entries(Literal table, Literal column = "entry") {
    const auto rows = installed->rows(table, column);
    return {rows.begin(), rows.end()};
  }

  static inline std::unique_ptr<InstalledConsole> installed;
  static inline std::shared_ptr<Database> database;
  static inline ConnectionHandle conn;
  static inline Counts counts;
};

bool is_reserved_domain(std::string_view name) {
  const std::string domain = lower(name);
  for (const std::string_view suffix :
       {"example", "test", "invalid", "example.com", "example.net", "example.org"}) {
    if (domain == suffix || domain.ends_with("." + std::string(suffix))) return true;
  }
  return false;
}

bool is_reserved_address(std::string_view address) {
  for (const std::string_view net : {"192.0.2.", "198.51.100.", "203.0.113.", "198.18.", "198.19."}) {
    if (address.starts_with(net)) return true;
  }
  return false;
}

// The host names that a text addresses: behind "//", and behind an "@" that a letter follows.
std::vector<std::string> names_in(std::string_view text) {
  std::vector<std::string> names;
  const auto take = [&](std::size_t begin) {
    std::size_t end = begin;
    while (end < text.size() &&
           (std::isalnum(static_cast<unsigned char>(text[end])) || text[end] == '-' || text[end] == '.'))
      ++end;
    const std::string_view name = text.substr(begin, end - begin);
    if (name.find('.') != name.npos) names.emplace_back(name);
  };
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '@') take(i + 1);
    if (text.substr(i, 3) == "://") take(i + 3);
  }
  return names;
}

TEST_F(SampleData, EveryTableHoldsWhatWasReported) {
  const Counts expected = {{"blacklist", 20000},
                           {"whitelist", 2500},
                           {"blackmail", 30000},
                           {"whitemail", 4000},
                           {"Blackhost", 12000},
                           {"Whitehost", 1500},
                           {"blacksub", 400},
                           {"whitesub", 60},
                           {"swords", 900},
                           {"words", 1200},
                           {"subjectwhite", 150},
                           {"mydomain", 12},
                           {"myips", 8},
                           {"localmail", 300},
                           {"exceptdomain", 25},
                           {"exceptmail", 15},
                           {"rblserver", 10},
                           {"wblserver", 3},
                           {"surblserver", 4},
                           {"rwords", 40},
                           {"extension", 30},
                           {"files", 60},
                           {"pop3", 5},
                           {"disclaimer", 3},
                           {"iplog", 50000},
                           {"predatalog", 20000},
                           {"subjectlog", 5000},
                           {"bodylog", 5000},
                           {"avlog", 5000},
                           {"marchive", 300},
                           {"scriptengine", scripts().size()},
                           {"konf", counts["konf"]}};
  EXPECT_EQ(counts, expected);
  for (const Literal table : {Literal("konf"), Literal("blackmail"), Literal("iplog"), Literal("marchive")}) {
    EXPECT_EQ(database->count_value("select * from " + table, conn), counts[std::string(table.text())]);
  }
  EXPECT_EQ(installed->registry("debug"), installed->option("debug"));
}

TEST_F(SampleData, IsTheSameEachTime) {
  InstalledConsole other;
  Counts again;
  ASSERT_TRUE(fill(other.console, again));
  EXPECT_EQ(again, counts);
  const Column columns[] = {{"konf", "value"},        {"blacklist", "entry"},
                            {"blackmail", "entry"},   {"Blackhost", "IPNumber"},
                            {"words", "entry"},       {"iplog", "servertime"},
                            {"iplog", "IPNumber"},    {"predatalog", "mailfrom"},
                            {"predatalog", "reason"}, {"bodylog", "mailto"},
                            {"avlog", "reason"},      {"marchive", "mid"},
                            {"marchive", "email"},    {"scriptengine", "scriptname"}};
  for (const auto& [table, column] : columns) {
    EXPECT_TRUE(other.rows(table, column) == installed->rows(table, column))
        << table.text() << "." << column.text();
  }
}

TEST_F(SampleData, LeavesADatabaseThatIsInUseAlone) {
  InstalledConsole used;
  used.set_string("welcome", "220 hello");
  Counts none;
  EXPECT_FALSE(fill(used.console, none));
  EXPECT_THAT(none, IsEmpty());
  EXPECT_EQ(used.text_option("welcome"), "220 hello");
  EXPECT_THAT(used.rows("blacklist", "entry"), IsEmpty());
  EXPECT_EQ(used.registry("debug"), "");
}

TEST(SampleCommand, FillsAFolderOnceAndTellsSo) {
  const test::TemporaryFolder folder;
  const auto init = [&] {
    std::istringstream in;
    std::ostringstream out;
    const std::vector<std::string> line = {"--folder", (folder.path() / "console").string(), "init",
                                           "--sample"};
    EXPECT_EQ(command::run_command_line(line, {page_catalogue(), {}}, in, out, out), command::success);
    return out.str();
  };
  EXPECT_THAT(init(), HasSubstr("table iplog: 50000 rows\n"));
  EXPECT_THAT(init(), EndsWith("the database already holds data; nothing was changed\n"));
}

TEST_F(SampleData, NamesNobodyWhoExists) {
  const Column addresses[] = {{"Blackhost", "IPNumber"},  {"Whitehost", "IPNumber"},  {"myips", "IPNumber"},
                              {"blacksub", "subnet"},     {"whitesub", "subnet"},     {"iplog", "IPNumber"},
                              {"predatalog", "IPNumber"}, {"subjectlog", "IPNumber"}, {"avlog", "IPNumber"},
                              {"marchive", "sip"}};
  for (const auto& [table, column] : addresses) {
    for (const std::string& one : entries(table, column)) ASSERT_TRUE(is_reserved_address(one)) << one;
  }
  const Column domains[] = {{"blacklist", "entry"},    {"whitelist", "entry"}, {"mydomain", "entry"},
                            {"exceptdomain", "entry"}, {"rblserver", "entry"}, {"wblserver", "entry"},
                            {"surblserver", "entry"},  {"marchive", "sdom"}};
  for (const auto& [table, column] : domains) {
    for (const std::string& one : entries(table, column)) {
      ASSERT_TRUE(is_reserved_domain(one.substr(one.find_first_not_of("@*")))) << one;
    }
  }
  const Column texts[] = {{"konf", "value"},          {"blackmail", "entry"},   {"whitemail", "entry"},
                          {"localmail", "entry"},     {"rwords", "repl"},       {"pop3", "forward"},
                          {"disclaimer", "html"},     {"predatalog", "reason"}, {"predatalog", "mailfrom"},
                          {"subjectlog", "mailfrom"}, {"bodylog", "mailto"},    {"avlog", "mailfrom"},
                          {"marchive", "envelope"},   {"marchive", "email"}};
  for (const auto& [table, column] : texts) {
    for (const std::string& one : entries(table, column)) {
      // Random bytes are no names.
      if (one.find(std::string_view("\0", 1)) != one.npos) continue;
      for (const std::string& name : names_in(one)) {
        const bool names_a_format = name == "ms.net";
        ASSERT_TRUE(names_a_format || is_reserved_domain(name)) << one;
      }
    }
  }
}

TEST_F(SampleData, LogsAgreeWithTheLists) {
  const std::set<std::string> black = entries("Blackhost", "IPNumber");
  const std::set<std::string> white = entries("Whitehost", "IPNumber");
  const Literal logs[] = {"SELECT * from iplog order by ID", "SELECT * from predatalog order by ID"};
  for (const Literal log : logs) {
    std::string last;
    for (const auto rows = conn->open(Statement(log), Connection::Access::read_only); !rows->at_end();
         rows->move_next()) {
      const std::string host(rows->text("IPNumber"));
      ASSERT_EQ(rows->number("status"), black.contains(host) ? 2 : white.contains(host) ? 1 : 0) << host;
      ASSERT_LE(last, rows->text("servertime"));
      last = rows->text("servertime");
    }
  }
  const Pair opposites[] = {
      {"blacklist", "whitelist"}, {"blackmail", "whitemail"}, {"swords", "subjectwhite"}};
  for (const auto& [left, right] : opposites) {
    const auto others = entries(right, "entry");
    for (const std::string& one : entries(left, "entry")) ASSERT_FALSE(others.contains(one)) << one;
  }
  for (const std::string& one : black) ASSERT_FALSE(white.contains(one)) << one;
  const auto keywords = entries("swords", "entry");
  for (const std::string& one : entries("subjectlog", "keyword")) ASSERT_TRUE(keywords.contains(one)) << one;
}

TEST_F(SampleData, HostileTextsArriveAsTheyAre) {
  for (const auto& senders : {entries("predatalog", "mailfrom"), entries("avlog", "mailfrom")}) {
    EXPECT_TRUE(senders.contains("'; DROP TABLE blacklist; --@evil.invalid"));
    EXPECT_TRUE(senders.contains("\x1b[2J\x1b[31mred\x07@terminal.invalid"));
    EXPECT_FALSE(senders.contains("#"));
  }
}

TEST_F(SampleData, MailsAreWhatTheySay) {
  const std::vector<Mail> mails = make_mails(make_lists(), end_of_logs);
  std::map<std::string_view, int> kinds;
  std::set<std::string> ids;
  for (const Mail& mail : mails) {
    SCOPED_TRACE(mail.kind);
    ++kinds[mail.kind];
    EXPECT_TRUE(ids.insert(mail.id).second);
    if (mail.header.empty()) continue;
    EXPECT_TRUE(mail.source.starts_with(mail.header + "\r\n"));
    EXPECT_THAT(mail.header, HasSubstr("\r\nSubject: " + mail.subject + "\r\n"));
    EXPECT_THAT(mail.header, HasSubstr("<" + mail.sender + ">"));
    const std::size_t found = mail.header.find("boundary=\"");
    if (found == mail.header.npos) continue;
    const std::size_t begin = found + 10;
    const std::string boundary = "\r\n--" + mail.header.substr(begin, mail.header.find('"', begin) - begin);
    EXPECT_THAT(mail.source, HasSubstr(boundary + "\r\n"));
    EXPECT_EQ(mail.source.ends_with(boundary + "--\r\n"), mail.kind != "truncated");
  }
  EXPECT_EQ(kinds.size(), 35U);
  const auto of_kind = [&](std::string_view kind) {
    return *std::find_if(mails.begin(), mails.end(), [&](const Mail& mail) { return mail.kind == kind; });
  };
  EXPECT_EQ(of_kind("nothing").source, "");
  EXPECT_GT(of_kind("one megabyte").source.size(), std::size_t{1} << 20);
  EXPECT_EQ(of_kind("failure report").return_path, "");
  EXPECT_THAT(of_kind("html only").source, HasSubstr("<script>"));
  EXPECT_FALSE(is_valid_utf8(of_kind("raw subject").subject));
}

TEST_F(SampleData, ScriptsAreStoredInUnitsOfTwoBytes) {
  std::set<std::string> positions;
  const auto rows = conn->open(Statement("SELECT * FROM scriptengine"), Connection::Access::read_only);
  for (; !rows->at_end(); rows->move_next()) {
    const std::string start = "Function " + std::string(rows->text("scriptname")) + "(input)\r\n";
    EXPECT_THAT(std::string(rows->bytes("scriptcontent")), StartsWith(to_utf16_bytes(start)));
    EXPECT_EQ(rows->bytes("scriptcontent").size() % 2, 0U);
    positions.emplace(rows->text("sposition"));
  }
  EXPECT_EQ(positions.size(), 8U);
}

}  // namespace
}  // namespace zrl::sample
