#include <gtest/gtest.h>

#include "components/directory/domain_name.h"
#include "components/directory/mail_address.h"
#include "components/directory/server_address.h"
#include "core/text/error.h"

namespace zrl::directory {
namespace {

TEST(MailAddressTest, OnlySmtpAddressesAreTaken) {
  const std::pair<std::string, std::string> cases[] = {
      {"User@Corp.Example", "user@corp.example"},
      {"smtp:a@b.example", "a@b.example"},
      {"SMTP:A@B.example", "a@b.example"},
      {"sMtP: a@b.example ", "a@b.example"},
      {"o'brien@b.example", "o'brien@b.example"},
      {"j\xC3\x96rg@b.example", "j\xC3\x96rg@b.example"},
      {"\"a:b\"@b.example", ""},
      {"x400:c=DE;a=x@y;", ""},
      {"sip:a@b.example", ""},
      {"X500:/o=Corp/cn=a", ""},
      {"smtp:", ""},
      {"nobody", ""},
      {"", ""},
      {"a\n@b.example", ""},
      {std::string("a\0@b.example", 12), ""},
      {"a\x7F@b.example", ""},
      {"a\xFF@b.example", ""},
      {std::string(310, 'a') + "@b.example", std::string(310, 'a') + "@b.example"},
      {std::string(311, 'a') + "@b.example", ""},
      {std::string(1 << 20, '@'), ""},
  };
  for (const auto& [value, address] : cases) EXPECT_EQ(address_in(value), address) << value.substr(0, 400);
}

TEST(DomainNameTest, DomainComponentsMakeAName) {
  const std::pair<std::string, const char*> cases[] = {
      {"DC=Corp,DC=Example", "corp.example"},
      {"dc=corp, dc=example", "corp.example"},
      {"0.9.2342.19200300.100.1.25=corp,DC=example", "corp.example"},
      {"dc=example", "example"},
      {"", ""},
      {"o=Corp,c=DE", ""},
      {"cn=Configuration,DC=corp,DC=example", ""},
      {"dc=corp+dc=x,dc=example", ""},
      {"dc=o'brien,dc=example", ""},
      {"dc=a\\2Cb,dc=example", ""},
      {"dc=a.b,dc=example", ""},
      {"dc=,dc=example", ""},
      {"dc=#FFFF,dc=example", ""},
      {"not a name", ""},
      {"dc=" + std::string(64, 'a'), ""},
      {std::string(100'000, ','), ""},
  };
  for (const auto& [name, domain] : cases) EXPECT_EQ(domain_of(name), domain) << name.substr(0, 100);
}

TEST(ServerAddressTest, PeopleWriteServersInSeveralForms) {
  const struct {
    const char* text;
    const char* url;
    const char* base;
  } cases[] = {
      {"host", "ldap://host:389", ""},
      {" dc1.corp.example:1389 ", "ldap://dc1.corp.example:1389", ""},
      {"10.0.0.1", "ldap://10.0.0.1:389", ""},
      {"[::1]:1389", "ldap://[::1]:1389", ""},
      {"ldap://host", "ldap://host:389", ""},
      {"LDAPS://host", "ldaps://host:636", ""},
      {"ldaps://host:1636/", "ldaps://host:1636", ""},
      {"ldap://host/dc=corp,dc=example", "ldap://host:389", "dc=corp,dc=example"},
      {"ldap://host/ou=a%20b?mail?sub", "ldap://host:389", "ou=a b"},
  };
  for (const auto& [text, url, base] : cases) {
    const ServerAddress address = ServerAddress::parse(text);
    EXPECT_EQ(address.url, url);
    EXPECT_EQ(address.base, base);
  }
  for (const char* text : {"", "  ", "two hosts", "http://host", "ldapi://%2Frun%2Fldapi", "ldap://",
                           "host:x", "host:99999", "a\nb", "ldap://a ldap://b"}) {
    EXPECT_THROW(ServerAddress::parse(text), Error) << text;
  }
}

}  // namespace
}  // namespace zrl::directory
