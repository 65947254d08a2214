#include <gtest/gtest.h>

#include "components/directory/directory.h"
#include "components/sqlite/sqlite.h"
#include "core/text/error.h"
#include "slapd.h"
#include "support/fake_services.h"

namespace zrl::directory {
namespace {

std::string root_domain(const std::string& server) {
  const test::TemporaryFolder folder;
  test::FakeServices console(folder.path());
  console.components().add<Database>([&] { return sqlite::make(console); });
  const auto database = sqlite::make(console);
  ConnectionHandle conn = database->open_database(console.data_provider());
  database->set_string("ldapserver", server, conn);
  return make(console)->RootDomain();
}

TEST(DirectoryLookupsTest, TheServerTellsTheRootDomain) {
  const struct {
    const char* root;
    const char* suffix;
    const char* domain;
  } cases[] = {
      {"", "dc=Corp,dc=example", "corp.example"},
      {"defaultNamingContext: DC=sales,DC=corp,DC=example\n", "dc=x,dc=example", "sales.corp.example"},
      {"rootDomainNamingContext: DC=corp,DC=example\ndefaultNamingContext: DC=sales,DC=corp,DC=example\n",
       "dc=x,dc=example", "corp.example"},
      {"", "o=Corp", ""},
      {"rootDomainNamingContext: DC=x');--,DC=example\n", "o=Corp", ""},
  };
  for (const auto& [root, suffix, domain] : cases) {
    const test::Slapd server("", {.suffix = suffix, .root = root});
    EXPECT_EQ(root_domain(server.address()), domain) << root << suffix;
  }
}

TEST(DirectoryLookupsTest, AMachineWithoutADirectoryHasNoRootDomain) {
  EXPECT_EQ(root_domain(""), "");
  EXPECT_EQ(root_domain(" "), "");
  EXPECT_THROW(root_domain("127.0.0.1:" + std::to_string(test::free_port())), Error);
}

}  // namespace
}  // namespace zrl::directory
