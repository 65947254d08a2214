#include "pages/settings/general_page.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/contracts/downloader.h"
#include "core/contracts/registry.h"
#include "support/installed_console.h"

namespace zrl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

class GeneralPageTest : public testing::Test, public test::InstalledConsole {
 protected:
  // A page as it is shown now, with nothing in the record.
  GeneralPage& shown() {
    page_ = std::make_unique<GeneralPage>(console);
    page_->initialise();
    return *page_;
  }
  GeneralPage& shown_and_quiet() {
    shown();
    forget_activity();
    return *page_;
  }

 private:
  std::unique_ptr<GeneralPage> page_;
};

TEST_F(GeneralPageTest, ShowingWritesTheIntervalAndTheVersionAndNothingElse) {
  const GeneralPage& page = shown();
  const std::string version = registry("ProductVersion");
  EXPECT_EQ(page.headline.caption(), "Welcome to Mirvan " + version);
  EXPECT_THAT(activity(), ElementsAre("set_option autoimport=0", "set_string version=" + version));
  EXPECT_EQ(option("autoimport"), "0");
  EXPECT_EQ(text_option("version"), version);
  EXPECT_GE(host.yields, 2);
  EXPECT_EQ(page.Combo1.items().size(), 2u);
  EXPECT_EQ(page.Combo1.text(), "");
}

TEST_F(GeneralPageTest, EveryPlainSwitchIsReadFromItsKeyAndWrittenToIt) {
  const struct {
    const char* box;
    const char* key;
  } cases[] = {
      {"removereceipts", "removereceipts"},
      {"comparemimewithsmtp", "comparemimewithsmtp"},
      {"checkforat", "checkforat"},
      {"Check1", "autORtest"},
      {"protokoll", "protokoll"},
      {"arcbody", "arcbody"},
      {"enablepipe", "enablepipe"},
      {"ehlo", "ehlo"},
      {"simulation", "simulation"},
      {"cutconnection", "cutconnection"},
      {"checkhelovalid", "checkhelovalid"},
      {"greylisting", "greylist"},
      {"checkmid", "checkmid"},
      {"checkheloip", "checkheloip"},
  };
  for (const auto& [box, key] : cases) set_option(key, 1);
  GeneralPage& page = shown_and_quiet();
  std::vector<std::string> writes;
  for (const auto& [box, key] : cases) {
    auto& control = static_cast<CheckBox&>(*page.find(box));
    EXPECT_TRUE(control.checked()) << box;
    control.user_click();
    EXPECT_EQ(option(key), "0") << key;
    writes.push_back(std::string("set_option ") + key + "=0");
  }
  EXPECT_EQ(activity(), writes);
}

TEST_F(GeneralPageTest, TheIntervalIsNormalisedOnEveryShowing) {
  const struct {
    const char* stored;
    bool checked;
    const char* written;
  } cases[] = {{"-1", false, "0"}, {"0", false, "0"}, {"1", true, "60"},    {"3", true, "60"},
               {"4", true, "60"},  {"5", true, "5"},  {"7", true, "7"},     {"60", true, "60"},
               {"", false, "0"},   {"x", true, "60"}, {"99999", true, "60"}};
  for (const auto& [stored, checked, written] : cases) {
    set_string("autoimport", stored);
    EXPECT_EQ(shown().autoimport.checked(), checked) << stored;
    EXPECT_EQ(option("autoimport"), written) << stored;
  }
  GeneralPage& page = shown();
  page.autoimport.user_click();
  EXPECT_EQ(option("autoimport"), "0");
  page.autoimport.user_click();
  EXPECT_EQ(option("autoimport"), "60");
}

TEST_F(GeneralPageTest, TheMailExchangerBoxReadsOneOptionAndWritesThree) {
  set_option("checksmtpmx", 1);
  set_option("checkmimemx", 1);
  GeneralPage& page = shown_and_quiet();
  EXPECT_FALSE(page.mx.checked());
  page.mx.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("set_option checkmx=1", "set_option checksmtpmx=1", "set_option checkmimemx=1"));
}

TEST_F(GeneralPageTest, BlockingReportsSwitchesBlackListingOffButNeverOn) {
  set_option("autoBLheader", 1);
  GeneralPage& page = shown_and_quiet();
  page.blockndr.user_click();
  EXPECT_THAT(activity(), ElementsAre("set_option blockndr=1", "set_option autoBLheader=0"));
  set_option("autoBLheader", 1);
  page.blockndr.user_click();
  EXPECT_EQ(option("blockndr"), "0");
  EXPECT_EQ(option("autoBLheader"), "1");
}

TEST_F(GeneralPageTest, DebuggingNeedsTheOptionAndTheRegistryValue) {
  const std::string path = console.settings().debug_path();
  set_option("debug", 1);
  EXPECT_FALSE(shown().debugging.checked());
  console.settings().regwrite_dword(path, 1);
  GeneralPage& page = shown_and_quiet();
  EXPECT_TRUE(page.debugging.checked());
  page.debugging.user_click();
  EXPECT_THAT(activity(), ElementsAre("set_option debug=0", path + "=0"));
  EXPECT_FALSE(shown().debugging.checked());
}

TEST_F(GeneralPageTest, EnglishIsStoredAsTheAbsenceOfTheLanguage) {
  GeneralPage& page = shown_and_quiet();
  page.Combo1.user_choose(1);
  EXPECT_EQ(registry("language"), "german");
  EXPECT_THAT(activity(), ElementsAre("HKLM\\SOFTWARE\\Mirvan\\language=german"));
  page.Combo1.user_type("english");
  EXPECT_EQ(registry("language"), "");
  page.Combo1.user_type(" German ");
  EXPECT_EQ(registry("language"), "german");
  page.Combo1.user_type("dutch");
  EXPECT_EQ(registry("language"), "");
}

TEST_F(GeneralPageTest, ALanguageThatWasFoundStaysForTheConsolesLife) {
  shown().Combo1.user_choose(1);
  GeneralPage& german = shown();
  EXPECT_EQ(german.Command1.caption(), "Alle Listen aktualisieren");
  EXPECT_EQ(german.headline.caption(), "Willkommen bei Mirvan " + registry("ProductVersion"));
  EXPECT_EQ(german.Combo1.text(), "german");
  EXPECT_EQ(german.Combo1.index(), 1);
  german.Combo1.user_choose(0);
  EXPECT_EQ(shown().Command1.caption(), "Alle Listen aktualisieren");

  Console next(folder.path(), host);
  register_components(next);
  GeneralPage page(next);
  page.initialise();
  EXPECT_EQ(page.Command1.caption(), "Update all lists");
}

TEST_F(GeneralPageTest, WhatOthersWroteIsThereOnTheNextShowing) {
  GeneralPage& page = shown();
  EXPECT_FALSE(page.checkmid.checked());
  set_option("checkmid", 1);
  EXPECT_FALSE(page.checkmid.checked());
  EXPECT_TRUE(shown().checkmid.checked());
}

TEST_F(GeneralPageTest, AnOptionThatIsNoNumberLeavesItsBoxAsItWas) {
  set_string("checkmid", "yes");
  EXPECT_FALSE(shown().checkmid.checked());
  EXPECT_THAT(activity(), Contains("failed: read_option checkmid"));
}

TEST_F(GeneralPageTest, WithoutAConnectionEveryBoxIsUncheckedAndClicksStoreNothing) {
  console.settings().regwrite_string(console.settings().data_provider_path(), "sqlite:none/proxy.db");
  forget_activity();
  GeneralPage& page = shown();
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_THAT(host.boxes[0].text, StartsWith("Connection to database could not be etablished: \r\n"));
  for (const Control* control : page.controls()) {
    if (control->kind() != ControlKind::check_box) continue;
    EXPECT_FALSE(static_cast<const CheckBox*>(control)->checked()) << control->name();
  }
  page.debugging.user_click();
  EXPECT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(registry("debug"), "1");  // the registry is another store
  EXPECT_THAT(activity(), Contains("failed: set_option debug=1"));
  page.terminate();
}

TEST_F(GeneralPageTest, TerminatingDropsBothHandles) {
  GeneralPage& page = shown();
  EXPECT_NE(page.database, nullptr);
  EXPECT_NE(page.conn, nullptr);
  page.terminate();
  EXPECT_EQ(page.database, nullptr);
  EXPECT_EQ(page.conn, nullptr);
}

// A downloader that publishes files.
class Publisher : public Downloader {
 public:
  explicit Publisher(std::filesystem::path folder) : folder_(std::move(folder)) {}

  std::string updateall() override {
    const std::pair<const char*, const char*> files[] = {
        {"delblack.txt", "both.example\r\ngone.example\r\n"},
        {"addblack.txt", "both.example\nnew.example\n"},
        {"addsubject.txt", "viagra\n"},
        {"addextension", "exe\n"},
        {"addextension.txt", "ignored\n"},
        {"adduserblack.txt", "x@spam.example\n"},
        {"deluserblack.txt", "x@spam.example\n"},
    };
    for (const auto& [name, text] : files) std::ofstream(folder_ / "download" / name) << text;
    return "7 files";
  }
  void update_db() override {}

 private:
  std::filesystem::path folder_;
};

TEST_F(GeneralPageTest, TheUpdateAppliesAllFilesInTheirOrder) {
  console.components().add<Downloader>([this] { return std::make_shared<Publisher>(folder.path()); });
  execute(insert_into("blacklist", "entry", "gone.example"));
  execute(insert_into("subjectwhite", "entry", "viagra"));
  GeneralPage& page = shown_and_quiet();
  bool disabled_while_working = false;
  host.on_process_events = [&] { disabled_while_working |= !page.Command1.enabled(); };
  page.Command1.user_click();

  EXPECT_TRUE(disabled_while_working);
  EXPECT_TRUE(page.Command1.enabled());
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("both.example", "new.example"));
  EXPECT_THAT(rows("swords", "entry"), ElementsAre("viagra"));
  EXPECT_THAT(rows("subjectwhite", "entry"), ElementsAre());
  EXPECT_THAT(rows("extension", "extension"), ElementsAre("exe"));
  EXPECT_THAT(rows("blackmail", "entry"), ElementsAre());
  EXPECT_EQ(registry("reloadblack"), "");  // the update of all lists raises no flag

  std::vector<std::string> merges;
  for (const std::string& text : activity()) {
    if (text.find("/download/") != text.npos) merges.push_back(text);
  }
  ASSERT_EQ(merges.size(), 22u);
  const std::string download = (folder.path() / "download").string();
  EXPECT_EQ(merges[0], "failed: delete files files " + download + "/delfiles.txt");
  EXPECT_EQ(merges[3], "import extension extension " + download + "/addextension");
  EXPECT_EQ(merges[17], "delete entry subjectwhite " + download + "/addsubject.txt");
  EXPECT_EQ(merges[20], "import entry blackmail " + download + "/adduserblack.txt");
  EXPECT_EQ(merges[21], "delete entry blackmail " + download + "/deluserblack.txt");
}

TEST_F(GeneralPageTest, AMissingDownloaderIsAFailedStepAndOldFilesAreApplied) {
  std::ofstream(folder.path() / "download" / "addwhite.txt") << "good.example\n";
  console.components().remove(Downloader::program_id);
  GeneralPage& page = shown_and_quiet();
  page.Command1.user_click();
  EXPECT_TRUE(page.Command1.enabled());
  EXPECT_THAT(activity(), Contains("failed: create zrlautoupdate.downloader"));
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("good.example"));
}

}  // namespace
}  // namespace zrl
