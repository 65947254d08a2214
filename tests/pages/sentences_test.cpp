// What acts say of themselves.
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "catalogue/catalogue.h"
#include "core/input_hint.h"
#include "pages/settings/general_page.h"
#include "support/dns_environment.h"
#include "support/installed_console.h"
#include "support/log_rows.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class SentencesTest : public testing::Test, public test::InstalledConsole {
 protected:
  SentencesTest() {
    // Nobody answers there.
    console.settings().regwrite_string(console.settings().path_of("updateurl"), "http://127.0.0.1:9/");
    set_string("ldapserver", "127.0.0.1:9");
    forget_activity();
  }

  Page& shown(std::string_view name) {
    page_ = find_page(page_catalogue(), name)->make(console);
    page_->initialise();
    return *page_;
  }

  // "NAME=TEXT" types, "NAME#INDEX" chooses an item, "NAME" clicks.
  void act(Page& page, const std::string& step) {
    const std::size_t equals = step.find('=');
    const std::size_t hash = step.find('#');
    if (equals != step.npos) {
      page.find(step.substr(0, equals))->user_type(step.substr(equals + 1));
    } else if (hash != step.npos) {
      page.find(step.substr(0, hash))->user_choose(std::stoi(step.substr(hash + 1)));
    } else {
      page.find(step)->user_click();
    }
  }

  // "TONE: TEXT".
  std::vector<std::string> said() {
    std::vector<std::string> sentences;
    const ActivityRecord& record = console.activity();
    for (std::uint64_t i = record.first_said(); i < record.total_said(); ++i) {
      sentences.push_back(std::string(name_of(record.said(i).tone)) + ": " + record.said(i).text);
    }
    return sentences;
  }

  std::vector<std::string> said_after(std::string_view page, const std::vector<std::string>& steps) {
    Page& form = shown(page);
    forget_activity();
    for (const std::string& step : steps) act(form, step);
    return said();
  }

  test::DnsEnvironment dns;

 private:
  std::unique_ptr<Page> page_;
};

struct Case {
  const char* page;
  std::vector<std::string> steps;
  const char* sentence;
};

TEST_F(SentencesTest, OfListsNameTheEntryAndTheList) {
  execute("INSERT INTO blacklist (entry) VALUES ('old.example')");
  execute("INSERT INTO Whitehost (IPNumber) VALUES ('192.0.2.9')");
  execute("INSERT INTO exceptmail (entry) VALUES ('a@old.example')");
  execute("INSERT INTO words (entry) VALUES ('casino')");
  execute("INSERT INTO rblserver (entry) VALUES ('zone.example')");
  execute("INSERT INTO files (files) VALUES ('bad.exe')");
  execute("INSERT INTO blacksub (subnet) VALUES ('192.0.2.0/24')");
  const Case cases[] = {
      {"domainbw", {"Text1=new.example", "Command3"}, "good: new.example added to the domain black list"},
      {"domainbw", {"Text1= ", "Command1"}, "neutral: Nothing stored: no entry is given"},
      {"domainbw", {"Text1=OLD.example", "Command4"}, "good: OLD.example removed from the domain black list"},
      {"domainbw",
       {"Text1=none.example", "Command4"},
       "neutral: Nothing removed: none.example is not in the domain black list"},
      {"domainbw", {"mxip=here", "blip"}, "neutral: Nothing changed: here is no IP number"},
      {"ipbw", {"ip=192.0.2.1", "Command3"}, "good: 192.0.2.1 added to the IP black list"},
      {"ipbw", {"ip=localhost", "Command1"}, "neutral: Nothing changed: localhost is no IP number"},
      {"ipbw", {"ip=192.0.2.9", "Command2"}, "good: 192.0.2.9 removed from the IP white list"},
      {"ipbw", {"ip=192.0.2.77", "Command2"}, "neutral: Nothing removed: 192.0.2.77 is in neither list"},
      {"ipbw", {"domain=example.net", "adbl"}, "good: example.net added to the domain black list"},
      {"subnets", {"subin=192.0.2.0/8", "addwhite"}, "good: 192.0.2.0/8 added to the subnet white list"},
      {"subnets", {"subin=192.0.2.0", "addwhite"}, "neutral: Nothing stored: 192.0.2.0 is no network"},
      {"subnets",
       {"subin=192.0.2.0/24", "removeit"},
       "good: 192.0.2.0/24 removed from the subnet black list"},
      {"wbuser", {"mail=a@b.example", "addblack"}, "good: a@b.example added to the address black list"},
      {"wbuser", {"mail=nobody", "addblack"}, "neutral: Nothing stored: an address needs an at sign"},
      {"exceptions",
       {"Text1=a@old.example", "removeex"},
       "good: a@old.example removed from the list of address exceptions"},
      {"exceptions", {"Text1=x.example", "addex"}, "good: x.example added to the list of domain exceptions"},
      {"localstuff",
       {"Text1=192.0.2.5", "Command1"},
       "good: 192.0.2.5 added to the list of local IP numbers"},
      {"localuser",
       {"uemail=me@here.example", "adduser"},
       "good: me@here.example added to the list of local users"},
      {"keywords", {"Text1=casino", "Command4"}, "good: casino removed from the list of body keywords"},
      {"keywords", {"Text1=pills", "Command1"}, "good: pills added to the list of subject keywords"},
      {"rblists",
       {"Text1=zone.example", "rblremove"},
       "good: zone.example removed from the list of DNS black lists"},
      {"filescanner",
       {"Text1=BAD.exe", "deleteit"},
       "good: BAD.exe removed from the list of blocked file names"},
      {"filescanner",
       {"Text1=.exe", "addextension"},
       "neutral: Nothing stored: an extension is listed without its dot"},
      {"wordreplace", {"Text1=a", "Text2=b", "Command1"}, "good: a is replaced by \"b\" from now on"},
  };
  for (const Case& one : cases) {
    EXPECT_THAT(said_after(one.page, one.steps), ElementsAre(one.sentence)) << one.page;
  }
}

TEST_F(SentencesTest, OfLogsSettingsAndScripts) {
  for (const char* address : {"192.0.2.7", "192.0.2.8"}) {
    execute(test::logged("iplog", address, "0", "2005"));
  }
  const Case cases[] = {
      {"iplog", {"iplist#0", "Command2"}, "good: 192.0.2.7 added to the IP black list"},
      {"iplog", {"iplist#0", "Command1"}, "good: 192.0.2.7 removed from both lists"},
      {"iplog", {"IPNumber=192.0.2.8", "delefrom"}, "good: Rows of 192.0.2.8 deleted from the logs"},
      {"iplog", {"domain=spam.example", "Command5"}, "good: spam.example added to the domain black list"},
      {"iplog", {"Command9"}, "good: 1 row deleted from the log"},
      {"iplog", {"Command9"}, "neutral: 0 rows deleted from the log"},
      {"avlog", {"Command10"}, "neutral: Nothing done: the field is empty"},
      {"general", {"checkmid"}, "good: \"Require a message identifier\" switched on"},
      {"general", {"checkmid"}, "good: \"Require a message identifier\" switched off"},
      {"general", {"blockndr"}, "good: \"Block non-delivery reports\" switched on"},
      {"general", {"Combo1=english"}, "good: The language is English"},
      {"pop_config", {"addmod"}, "neutral: Nothing stored: an account needs a user name and a server"},
      {"pop_config", {"username=a", "server=b.example", "addmod"}, "good: Account a,b.example stored"},
      {"pop_config", {"poptime=7", "setpoptime"}, "good: Mail is collected every 7 minutes"},
      {"strings", {"updatedb"}, "good: Reply texts stored"},
      {"ServiceControl", {"Command1"}, "good: Addresses and ports stored"},
      {"ScriptEngine", {"scriptnamen=first one", "insertnew"}, "good: Script first_one stored"},
  };
  for (const Case& one : cases) {
    EXPECT_THAT(said_after(one.page, one.steps), ElementsAre(one.sentence)) << one.page;
  }
}

TEST_F(SentencesTest, OfFailedActsSayWhyAndAreNeverGood) {
  execute("CREATE TRIGGER locked BEFORE INSERT ON blacklist BEGIN SELECT raise(ABORT, 'kept out'); END");
  EXPECT_THAT(said_after("domainbw", {"Text1=spam.example", "Command3"}),
              ElementsAre("bad: spam.example not added to the domain black list: kept out"));
  // What was to be done was, but not what belongs to it.
  execute("CREATE TRIGGER held BEFORE DELETE ON blacklist BEGIN SELECT raise(ABORT, 'held'); END");
  execute("DROP TRIGGER locked");
  execute("INSERT INTO blacklist (entry) VALUES ('ham.example')");
  EXPECT_THAT(said_after("domainbw", {"Text1=ham.example", "Command1"}),
              ElementsAre("bad: ham.example added to the domain white list. A step of it failed: held"));
  EXPECT_THAT(said_after("domainbw", {"Text1=O'Neil", "Command4"}),
              ElementsAre(StartsWith("bad: O'Neil not removed from the domain black list: ")));
  EXPECT_THAT(said_after("pop_config", {"poptime=soon", "setpoptime"}),
              ElementsAre(StartsWith("bad: The interval \"soon\" was not stored: ")));
  EXPECT_THAT(said_after("general", {"Command1"}),
              ElementsAre(StartsWith("bad: The lists could not be fetched from the server: ")));
}

// A stranger's text stops none of the others.
TEST_F(SentencesTest, OfManyCountThoseThatWorked) {
  for (const char* sender : {"a@spam.example", "b@spam.example"}) {
    execute("INSERT INTO avlog (mailfrom, reason) VALUES ('" + value(sender) + "','x')");
  }
  EXPECT_THAT(said_after("avlog", {"Command1"}),
              ElementsAre("good: 2 senders added to the address black list"));
  execute("INSERT INTO avlog (mailfrom, reason) SELECT char(39)||'c', 'x'");
  EXPECT_THAT(
      said_after("avlog", {"Command1"}),
      ElementsAre(StartsWith("bad: 2 senders added to the address black list. A step of it failed: ")));
}

// The statement works; only the end of the act finds the disk full.
TEST_F(SentencesTest, OfAnActThatDidNotLastSayTheOpposite) {
  Page& page = shown("general");
  forget_activity();
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const rlimit full{std::filesystem::file_size(folder.path() / "proxy.db-wal"), before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &full);
  act(page, "checkmid");
  ::setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_THAT(said(), ElementsAre(StartsWith("bad: \"Require a message identifier\" not switched on: ")));
}

TEST_F(SentencesTest, ValuesArePrintableBoundedAndNotReadAgain) {
  Page& page = shown("ipbw");
  forget_activity();
  act(page, "ip=%2 \x1B[31m\xE2\x80\xAE" + std::string(10'000, 'x'));
  act(page, "Command1");
  ASSERT_EQ(said().size(), 1u);
  EXPECT_THAT(said().front(), StartsWith("neutral: Nothing changed: %2 \\x1b[31m\\xe2\\x80\\xaexxx"));
  EXPECT_LT(said().front().size(), 300u);
}

TEST_F(SentencesTest, AreInTheLanguageOfTheConsole) {
  console.settings().regwrite_string(console.settings().language_path(), "german");
  EXPECT_THAT(said_after("domainbw", {"Text1=spam.example", "Command3"}),
              ElementsAre("good: spam.example zur schwarzen Liste der Dom\xC3\xA4nen hinzugef\xC3\xBCgt"));
  EXPECT_THAT(said_after("wbuser", {"mail=nobody", "addwhite"}),
              ElementsAre("neutral: Nichts gespeichert: Eine Adresse braucht ein @"));
}

// Hints come while people type: they are no steps.
TEST_F(SentencesTest, HintsLeaveNoTrace) {
  EXPECT_EQ(input_hint(console, expects::keyword, "REGEX[a(b]").text,
            "The regular expression is broken: Expected ')' in regular expression");
  EXPECT_EQ(input_hint(console, expects::domain, "http://spam.example").unfinished, false);
  EXPECT_THAT(activity(), IsEmpty());
  EXPECT_THAT(said(), IsEmpty());
}

// Whoever adds an act gives it words.
TEST_F(SentencesTest, EveryActThatWritesSaysSo) {
  execute(test::logged("predatalog", "192.0.2.7", "2", "2005", "reason"));
  execute(test::logged("iplog", "192.0.2.7", "2", "2005"));
  std::size_t writing = 0;
  for (const PageEntry& entry : page_catalogue()) {
    const std::unique_ptr<Page> page = entry.make(console);
    page->initialise();
    EXPECT_THAT(said(), IsEmpty()) << entry.name << " speaks when it is shown";
    const ActivityRecord& record = console.activity();
    for (std::uint64_t i = record.first(); i < record.total(); ++i) {
      EXPECT_TRUE(record[i].routine || !record[i].write) << entry.name << ": " << record[i].text;
    }
    for (Control* control : page->controls()) {
      if (control->kind() != ControlKind::button && control->kind() != ControlKind::check_box) continue;
      if (!control->usable()) continue;
      forget_activity();
      control->user_click();
      bool wrote = false;
      for (std::uint64_t i = record.first(); i < record.total(); ++i) {
        wrote = wrote || (record[i].write && !record[i].routine) || (!record[i].ok && !record[i].expected);
      }
      if (!wrote) continue;
      ++writing;
      EXPECT_THAT(said(), Not(IsEmpty()))
          << entry.name << "." << control->name() << ": " << activity().front();
    }
    page->terminate();
    forget_activity();
  }
  EXPECT_GT(writing, 90u);
}

// The showing of the general page lets events run.
TEST_F(SentencesTest, AnActDuringAShowingIsNoRoutine) {
  GeneralPage page(console);
  host.on_process_events = [&] {
    host.on_process_events = {};
    page.ehlo.user_click();
  };
  page.initialise();
  std::map<std::string, bool> routine;
  const ActivityRecord& record = console.activity();
  for (std::uint64_t i = record.first(); i < record.total(); ++i) {
    if (record[i].write) routine[std::string(record[i].text)] = record[i].routine;
  }
  EXPECT_FALSE(routine.at("set_option ehlo=1"));
  EXPECT_TRUE(routine.at("set_option autoimport=0"));
  EXPECT_THAT(said(), ElementsAre("good: \"Accept EHLO\" switched on"));
}

}  // namespace
}  // namespace zrl
