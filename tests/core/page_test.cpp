#include "core/page.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fake_components.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

class SmallPage : public Page {
 public:
  explicit SmallPage(Console& console) : Page(console, "small", "Small") {
    bind_switches({{Check1, "check"}});
    Command1.on_click = [this] { execute("DELETE FROM words"); };
    Command2.on_click = [this] {
      busy(Command2, [this] {
        EXPECT_FALSE(Command2.enabled());
        throw std::runtime_error("raised on purpose");
      });
    };
  }

  Label Label1{*this, "Label1", "english"};
  Label Label2{*this, "Label2", ""};
  ListBox List1{*this, "List1", "a tip"};
  CheckBox Check1{*this, "Check1", "Check", "another tip"};
  Button Command1{*this, "Command1", "Delete"};
  Button Command2{*this, "Command2", ""};
  Timer Timer1{*this, "Timer1", 100, true};
  int loads = 0;

 private:
  void load() override {
    ++loads;
    load_switch(Check1);
  }
};

class PageTest : public testing::Test {
 protected:
  PageTest() { test::add_registry(console.components(), store); }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  test::MemoryRegistry::Store store;
  Console console{folder.path(), host};
};

TEST_F(PageTest, TranslationDropsTheTranslatorAfterEveryControlAndGoesOnePastTheEnd) {
  test::ShoutingTranslator::Log log;
  test::add_translator(console.components(), log);
  store.values["hklm\\software\\mirvan\\language"] = "german";
  SmallPage page(console);
  page.initialise();
  EXPECT_EQ(page.Label1.caption(), "ENGLISH");
  EXPECT_EQ(page.Label2.caption(), "");
  EXPECT_EQ(page.List1.tool_tip(), "A TIP");
  EXPECT_EQ(page.Check1.tool_tip(), "ANOTHER TIP");
  EXPECT_THAT(log.translated,
              testing::ElementsAre("english", "a tip", "Check", "another tip", "Delete",
                                   "No Database Connection Possible",
                                   testing::StartsWith("Connection to database could not be etablished: ")));
  EXPECT_EQ(log.created, 5);  // one for each control with something to translate, and one for the box
  EXPECT_EQ(host.boxes.at(0).title, "NO DATABASE CONNECTION POSSIBLE");
}

TEST_F(PageTest, AButtonIsUsableAgainWhateverItsActionRaises) {
  SmallPage page(console);
  page.initialise();
  for (int i = 0; i < 2; ++i) page.Command2.user_click();
  EXPECT_TRUE(page.Command2.enabled());
  const ActivityRecord& record = console.activity();
  EXPECT_EQ(record[record.total() - 1].text, "Command2");
  EXPECT_EQ(record[record.total() - 1].error, "raised on purpose");
}

TEST_F(PageTest, AFailedConnectionIsToldOnceAndThePageGoesOn) {
  SmallPage page(console);
  page.initialise();
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].title, "No Database Connection Possible");
  EXPECT_EQ(host.boxes[0].text,
            "Connection to database could not be etablished: \r\n"
            "429: the component dbfunctions.dba is not available");
  EXPECT_EQ(host.boxes[0].style, BoxStyle::critical);
  EXPECT_EQ(page.loads, 1);
  EXPECT_EQ(page.database, nullptr);
  EXPECT_EQ(page.conn, nullptr);

  page.Check1.user_click();
  page.Command1.user_click();
  EXPECT_EQ(host.boxes.size(), 1u);
  EXPECT_TRUE(page.Check1.checked());
  std::vector<std::string> failed;
  for (std::uint64_t i = 0; i < console.activity().total(); ++i) {
    EXPECT_FALSE(console.activity()[i].ok);
    failed.emplace_back(console.activity()[i].text);
  }
  EXPECT_THAT(failed, testing::ElementsAre("open_database ", "read_option check", "set_option check=1",
                                           "DELETE FROM words"));
}

}  // namespace
}  // namespace zrl
