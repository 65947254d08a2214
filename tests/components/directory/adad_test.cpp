#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/directory/directory.h"
#include "components/sqlite/sqlite.h"
#include "core/text/error.h"
#include "slapd.h"
#include "support/fake_services.h"

namespace zrl::directory {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// The operation of the database component, with a real server behind it.
class AdadTest : public testing::Test {
 protected:
  AdadTest() {
    console_.components().add<DirectoryUsers>([this] { return make_users(console_); });
    conn_ = database_->open_database("sqlite:zrl.db");
  }

  std::string import_from(std::string_view server) {
    database_->set_string("ldapserver", server, conn_);
    try {
      database_->adad();
    } catch (const Error& error) {
      return error.what();
    }
    return "done";
  }
  void add(std::string_view entry) { conn_->execute(insert_into("localmail", "entry", entry)); }
  std::vector<std::string> users() {
    const StringList array = database_->get_db_array(conn_, "localmail", "entry", {});
    std::vector<std::string> result;
    for (std::size_t i = 0; i + 1 < array.size(); ++i) result.emplace_back(array[i]);
    return result;
  }

  test::TemporaryFolder folder_;
  test::FakeServices console_{folder_.path()};
  std::shared_ptr<Database> database_ = sqlite::make(console_);
  ConnectionHandle conn_;
};

TEST_F(AdadTest, UsersThatTheTableLacksAreAddedOnce) {
  add("known@corp.example");
  add("left@corp.example");
  const test::Slapd server(
      test::user("a", "Known@corp.example", {"SMTP:known@corp.example", "smtp:o'brien@corp.example"}) +
      test::user("b", "New@corp.example", {"SMTP:NEW@CORP.EXAMPLE"}));
  EXPECT_EQ(import_from(server.address()), "done");
  EXPECT_THAT(users(), ElementsAre("known@corp.example", "left@corp.example", "o'brien@corp.example",
                                   "new@corp.example"));
  EXPECT_EQ(import_from(server.address()), "done");
  EXPECT_EQ(users().size(), 4u);
}

TEST_F(AdadTest, AServerThatFailsChangesNothing) {
  add("left@corp.example");
  std::string entries;
  for (int i = 0; i < 100; ++i) {
    entries += test::user("u" + std::to_string(i), "u" + std::to_string(i) + "@corp.example");
  }
  const test::Slapd server(entries, {.limits = "size=50 size.prtotal=disabled"});
  EXPECT_THAT(import_from(server.address()), HasSubstr("Size limit exceeded"));
  EXPECT_THAT(import_from(""), HasSubstr("no directory server is named"));
  EXPECT_THAT(import_from("http://x"), HasSubstr("not valid"));
  EXPECT_THAT(users(), ElementsAre("left@corp.example"));
}

}  // namespace
}  // namespace zrl::directory
