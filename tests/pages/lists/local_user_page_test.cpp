#include "pages/lists/local_user_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/contracts/directory.h"
#include "core/text/error.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class LocalUserPageTest : public testing::Test, public test::ShownPage<LocalUserPage> {};

TEST_F(LocalUserPageTest, AUserIsStoredInSmallLettersAndTheDomainOnce) {
  LocalUserPage& page = shown();
  page.uemail.user_type(" Anna@Example.COM");
  page.adduser.user_click();
  EXPECT_EQ(page.uemail.text(), " anna@example.com");
  EXPECT_THAT(activity(),
              ElementsAre(raised("reloadblack"), "INSERT INTO localmail (entry) VALUES ('anna@example.com')",
                          "DELETE FROM mydomain where entry='example.com'",
                          "INSERT INTO mydomain (entry) VALUES ('example.com')"));
  page.adduser.user_click();
  page.uemail.user_type("bob@example.com");
  page.adduser.user_click();
  EXPECT_THAT(items(page.List1), ElementsAre("anna@example.com", "anna@example.com", "bob@example.com"));
  EXPECT_THAT(rows("mydomain", "entry"), ElementsAre("example.com"));
  EXPECT_TRUE(page.adduser.enabled());
}

TEST_F(LocalUserPageTest, WhatIsNoDomainDoesNotBecomeLocal) {
  LocalUserPage& page = shown();
  for (const char* address : {"a@localhost", "a@b@c.example", "a@", "@", "NOBODY"}) {
    page.uemail.user_type(address);
    page.adduser.user_click();
  }
  EXPECT_THAT(rows("mydomain", "entry"), IsEmpty());
  EXPECT_THAT(rows("localmail", "entry"), ElementsAre("a@localhost", "a@b@c.example", "a@", "@"));
  EXPECT_EQ(page.uemail.text(), "nobody");
}

TEST_F(LocalUserPageTest, AUserWhoIsNotStoredChangesNothing) {
  LocalUserPage& page = shown();
  page.uemail.user_type("o'neil@example.com");
  page.adduser.user_click();
  EXPECT_THAT(activity(), ElementsAre("failed: INSERT INTO localmail (entry) VALUES ('o'neil@example.com')"));
  EXPECT_THAT(rows("mydomain", "entry"), IsEmpty());
  EXPECT_THAT(page.uemail.tool_tip(), testing::HasSubstr("apostrophe"));
}

TEST_F(LocalUserPageTest, RemovingIgnoresCapitalLettersAndKeepsTheDomain) {
  insert("localmail", "entry", {"anna@example.com", "no address"});
  insert("mydomain", "entry", {"example.com"});
  LocalUserPage& page = shown();
  EXPECT_THAT(items(page.List1), ElementsAre("anna@example.com"));
  page.uemail.user_type("no address");
  page.removeuser.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  page.uemail.user_type("Anna@example.com ");
  page.removeuser.user_click();
  EXPECT_THAT(activity(),
              ElementsAre(raised("reloadblack"), "DELETE FROM localmail where entry='Anna@example.com'"));
  EXPECT_THAT(items(page.List1), IsEmpty());
  EXPECT_THAT(rows("mydomain", "entry"), ElementsAre("example.com"));
}

TEST_F(LocalUserPageTest, TheServerIsStoredBeforeItsUsersAreImported) {
  set_string("ldapserver", "192.0.2.1");
  LocalUserPage& page = shown();
  EXPECT_EQ(page.Text1.text(), "192.0.2.1");
  page.Text1.user_type("");
  page.Command1.user_click();
  EXPECT_THAT(activity(), IsEmpty());

  page.Text1.user_type("127.0.0.1");  // where no directory is
  insert("localmail", "entry", {"a@example.com"});
  page.Command1.user_click();
  EXPECT_THAT(activity(), ElementsAre("set_string ldapserver=127.0.0.1", EndsWith("adad")));
  EXPECT_THAT(items(page.List1), ElementsAre("a@example.com"));

  forget_activity();
  page.Text1.user_type("typed");
  insert("localmail", "entry", {"b@example.com"});
  page.importat.user_click();
  EXPECT_THAT(activity(), ElementsAre(EndsWith("adad"), raised("reloadblack")));
  EXPECT_THAT(items(page.List1), ElementsAre("a@example.com", "b@example.com"));
  EXPECT_EQ(page.Text1.text(), "typed");
}

class FakeDirectory : public DirectoryLookups {
 public:
  explicit FakeDirectory(std::string_view root) : root_(root) {}
  std::string RootDomain() override {
    if (root_ == "broken") throw Error(5, "no answer");
    return std::string(root_);
  }

 private:
  std::string_view root_;
};

TEST_F(LocalUserPageTest, TheDirectoryCheckNeedsADirectory) {
  const std::pair<std::string_view, std::vector<std::string>> cases[] = {
      {"none", {"failed: create mirvan_ad.lookups", "set_option check_real_ad=0"}},
      {"", {"set_option check_real_ad=0"}},
      {"broken", {"failed: RootDomain", "set_option check_real_ad=0"}},
      {"corp.example",
       {"set_option check_real_ad=1", "INSERT INTO mydomain (entry) VALUES ('corp.example')"}},
  };
  insert("mydomain", "entry", {"corp.example"});
  console.components().remove(DirectoryLookups::program_id);
  for (const auto& [root, ticking] : cases) {
    if (root != "none") {
      console.components().add<DirectoryLookups>([root] { return std::make_shared<FakeDirectory>(root); });
    }
    LocalUserPage& page = shown();
    page.check_real_ad.user_click();
    EXPECT_EQ(activity(), ticking) << root;
    EXPECT_EQ(page.check_real_ad.checked(), root == "corp.example") << root;
  }
  EXPECT_THAT(rows("mydomain", "entry"), ElementsAre("corp.example", "corp.example"));

  LocalUserPage& page = shown();
  EXPECT_TRUE(page.check_real_ad.checked());
  page.check_real_ad.user_click();
  EXPECT_THAT(activity(), ElementsAre("set_option check_real_ad=0"));
}

TEST_F(LocalUserPageTest, TheSwitchesAndTheTransferHaveTheirKeys) {
  expect_switches(
      {{"usercheck", "localmail"}, {"fakeprotectuser", "nofakemail"}, {"check_real_ad", "check_real_ad"}});
  LocalUserPage& page = shown();
  EXPECT_THAT(transfer(page.imexfile),
              ElementsAre("Local User", "failed: import entry localmail /none/x.txt"));
}

}  // namespace
}  // namespace zrl
