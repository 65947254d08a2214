#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/directory/directory.h"
#include "core/text/error.h"
#include "slapd.h"
#include "support/fake_services.h"

namespace zrl::directory {
namespace {

using test::user;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> sorted(const StringList& list) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < list.size(); ++i) result.emplace_back(list[i]);
  std::sort(result.begin(), result.end());
  return result;
}

StringList users_of(const std::string& server, const Options& options = {}) {
  test::FakeServices console;
  return make_users(console, options)->addresses(server);
}

std::string failure(const std::string& server, const Options& options = {}) {
  try {
    users_of(server, options);
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

std::string many_users(int count) {
  std::string entries;
  for (int i = 0; i < count; ++i) {
    const std::string name = "user" + std::to_string(i);
    entries += user(name, name + "@corp.example");
  }
  return entries;
}

TEST(DirectoryUsersTest, AddressesOfEveryKindOfEntryAreRead) {
  const test::Slapd server(
      user(
          "a", "Anna@Corp.Example",
          {"SMTP:anna@corp.example", "smtp:A.Nna@Corp.Example", "x400:c=DE;a=b@c", "sip:anna@corp.example"}) +
      user("b", "bob", {"smtp:o'brien@corp.example", "SMTP:\"; DROP TABLE@corp.example"}) +
      user("c", "outside@else.example", {"SMTP:outside@else.example"}, "objectClass: contact\n") +
      user("d", "",
           {std::string(1 << 20, '@'), "smtp:bad\xFF@x", std::string("smtp:z\0@x", 9),
            "smtp:d@corp.example"}) +
      user("e", "") +
      "dn: ou=Sales,dc=corp,dc=example\nobjectClass: organizationalUnit\nobjectClass: extensibleObject\n"
      "ou: Sales\nmail: sales@corp.example\n\n");
  EXPECT_THAT(
      sorted(users_of(server.address())),
      ElementsAre("\"; drop table@corp.example", "a.nna@corp.example", "anna@corp.example",
                  "anna@corp.example", "d@corp.example", "o'brien@corp.example", "sales@corp.example"));
}

TEST(DirectoryUsersTest, LargeDirectoriesComeInPages) {
  const test::Slapd server(many_users(1000), {.limits = "size=50 size.prtotal=unlimited"});
  test::FakeServices console;
  Options options;
  options.limits.page_size = 30;
  std::uint64_t entries = 0;
  console.on_progress = [&](const Progress& progress) { entries = progress.done; };
  EXPECT_EQ(make_users(console, options)->addresses(server.address()).size(), 1000u);
  EXPECT_EQ(entries, 1000u);
  EXPECT_GT(console.yields, 0);
}

TEST(DirectoryUsersTest, AServerWithoutPagesSendsAllAtOnce) {
  const test::Slapd server(many_users(700), {.limits = "size=unlimited size.prtotal=disabled"});
  EXPECT_EQ(users_of(server.address()).size(), 700u);
}

TEST(DirectoryUsersTest, AnAnswerThatIsNotCompleteIsAnError) {
  const test::Slapd server(many_users(100), {.limits = "size=50 size.prtotal=disabled"});
  EXPECT_THAT(failure(server.address()), AllOf(HasSubstr("Size limit exceeded"), HasSubstr("size.prtotal")));
}

TEST(DirectoryUsersTest, TooManyAddressesAreRefused) {
  const test::Slapd server(many_users(100));
  Options options;
  options.limits.addresses = 99;
  EXPECT_THAT(failure(server.address(), options), HasSubstr("too many addresses"));
  options.limits.addresses = 100;
  options.limits.address_bytes = 1000;
  EXPECT_THAT(failure(server.address(), options), HasSubstr("too many addresses"));
}

TEST(DirectoryUsersTest, TheBaseComesFromTheAddressOrTheServer) {
  const std::string entries =
      "dn: ou=in,dc=corp,dc=example\nobjectClass: organizationalUnit\nou: in\n\n"
      "dn: cn=x,ou=in,dc=corp,dc=example\nobjectClass: inetOrgPerson\ncn: x\nsn: x\nmail: x@in.example\n\n" +
      user("y", "y@out.example");
  {
    const test::Slapd server(entries);
    EXPECT_THAT(sorted(users_of(server.address())), ElementsAre("x@in.example", "y@out.example"));
    const std::string url = "ldap://" + server.address();
    EXPECT_THAT(sorted(users_of(url + "/ou=in,dc=corp,dc=example")), ElementsAre("x@in.example"));
    EXPECT_THAT(failure(url + "/ou=none,dc=corp,dc=example"), HasSubstr("No such object"));
  }
  const test::Slapd server(entries, {.root = "defaultNamingContext: ou=in,dc=corp,dc=example\n"});
  EXPECT_THAT(sorted(users_of(server.address())), ElementsAre("x@in.example"));
}

TEST(DirectoryUsersTest, EncryptedServersMustProveWhoTheyAre) {
  const test::Slapd server(user("a", "a@corp.example"), {.encrypted = true});
  Options options;
  EXPECT_THAT(
      failure("ldaps://" + server.address(), options),
      AllOf(HasSubstr("server ldaps://127.0.0.1"), HasSubstr("TLS failed"), HasSubstr("certificate")));
  options.certificates = server.tls().certificate;
  EXPECT_THAT(sorted(users_of("ldaps://" + server.address(), options)), ElementsAre("a@corp.example"));
}

TEST(DirectoryUsersTest, AServerThatIsNotThereIsAnError) {
  EXPECT_THAT(failure("127.0.0.1:" + std::to_string(test::free_port())),
              HasSubstr("Can't contact LDAP server"));
  EXPECT_THAT(failure("host.invalid"), HasSubstr("Can't contact LDAP server"));
  EXPECT_THAT(failure("ldaps://127.0.0.1:" + std::to_string(test::free_port())),
              HasSubstr("Can't contact LDAP server"));
  const test::Slapd plain(user("a", "a@corp.example"));
  EXPECT_THAT(failure("ldaps://" + plain.address()), HasSubstr("TLS failed: "));
}

}  // namespace
}  // namespace zrl::directory
