#include "pages/settings/strings_page.h"

#include <gmock/gmock.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StringsPageTest : public testing::Test, public test::ShownPage<StringsPage> {
 protected:
  std::string version_write() { return "set_string version=" + registry("ProductVersion"); }
};

TEST_F(StringsPageTest, AFreshStoreIsFilledWithTheDefaultsOnce) {
  StringsPage page(console);
  page.initialise();
  EXPECT_THAT(activity(), ElementsAre("set_string welcome=220 Mirvan",
                                      "set_string hello=250 Hello - Please do not SPAM me ",
                                      "set_string bye=221 2.0.0 thank you for not SPAMMING me",
                                      "set_string queue=250 2.6.0 You got rid of your HAM", version_write()));
  EXPECT_EQ(page.hello.text(), "250 Hello - Please do not SPAM me ");
  EXPECT_EQ(text_option("version"), registry("ProductVersion"));

  set_string("bye", " \r\n");  // blank counts as missing
  set_string("queue", "250 done");
  forget_activity();
  page.Command1.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("set_string bye=221 2.0.0 thank you for not SPAMMING me", version_write()));
  EXPECT_EQ(page.queue.text(), "250 done");
}

TEST_F(StringsPageTest, SavingStoresTrimmedTextsInTheirOrderAndNoEmptyOne) {
  StringsPage& page = shown();
  page.welcome.user_type("220-one\r\n220 two\r\n\r\n");
  page.hello.user_type("");
  page.bye.user_type(" \r\n ");
  page.queue.user_type(" 250 queued ");
  page.updatedb.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("set_string welcome=220-one\r\n220 two", "set_string queue=250 queued"));
  EXPECT_EQ(text_option("welcome"), "220-one\r\n220 two");

  // The emptied fields show what is stored when they are read again; saving takes the default's
  // blank away.
  page.Command1.user_click();
  EXPECT_EQ(page.hello.text(), "250 Hello - Please do not SPAM me ");
  page.updatedb.user_click();
  EXPECT_EQ(text_option("hello"), "250 Hello - Please do not SPAM me");
  EXPECT_EQ(text_option("bye"), "221 2.0.0 thank you for not SPAMMING me");
}

TEST_F(StringsPageTest, LineBreaksInsideABannerAreKeptAsTheyWereEntered) {
  StringsPage& page = shown();
  const std::string banner = "220-a\n220-b\r\n220-\r\n220 'c' \"d\"";
  page.welcome.user_type(banner);
  page.updatedb.user_click();
  EXPECT_EQ(text_option("welcome"), banner);
  EXPECT_EQ(shown().welcome.text(), banner);
}

TEST_F(StringsPageTest, TheDefaultBannerIsShownAndStored) {
  StringsPage& page = shown();
  page.hello.user_type("250 not saved");
  page.Command2.user_click();
  const std::string banner = text_option("welcome");
  EXPECT_EQ(page.welcome.text(), banner);
  EXPECT_THAT(activity(), ElementsAre("set_string welcome=" + banner));
  std::vector<std::string> lines;
  for (std::size_t begin = 0, end = 0; end != banner.npos; begin = end + 2) {
    end = banner.find("\r\n", begin);
    lines.push_back(banner.substr(begin, end - begin));
  }
  EXPECT_THAT(lines, ElementsAre("220-" + std::string(48, '*'), "220-Mirvan here",
                                 "220-Please accept our Mail Policy and do not SPAM us",
                                 testing::MatchesRegex("220-We are protected by Mirvan \\(http.*\\)"),
                                 "220 " + std::string(48, '*')));
}

TEST_F(StringsPageTest, WithoutAConnectionTheDefaultsAreShown) {
  console.settings().regwrite_string(console.settings().data_provider_path(), "sqlite:none/proxy.db");
  StringsPage& page = shown();
  EXPECT_EQ(page.welcome.text(), "220 Mirvan");
  page.welcome.user_type("220 typed");
  page.Command1.user_click();
  EXPECT_EQ(page.welcome.text(), "220 typed");
  EXPECT_EQ(text_option("welcome"), "");
  EXPECT_EQ(host.boxes.size(), 1u);
}

}  // namespace
}  // namespace zrl
