#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/dns/caller_id_check.h"
#include "components/dns/caller_id_record.h"
#include "core/text/error.h"
#include "support/zone_lookups.h"

namespace zrl::dns {
namespace {

using test::ZoneLookups;
using testing::StartsWith;

std::string policy(std::string_view servers, std::string_view attributes = "") {
  return "<ep xmlns='http://ms.net/1'" + std::string(attributes) + "><out><m>" + std::string(servers) +
         "</m></out></ep>";
}

std::string check(std::string_view record, std::string_view client, ZoneLookups& lookups) {
  const SenderCheck found = check_caller_id(
      {*IpAddress::parse(client), "example.com", std::string(record), "postmaster@example.com"}, lookups);
  EXPECT_EQ(found.authorised, found.reason.starts_with("pass: ")) << found.reason;
  return found.reason;
}

TEST(CallerIdRecordTest, IsReadPastWhatIsNotKnown) {
  const CallerIdRecord record = parse_caller_id_record(
      " <?xml version='1.0' encoding='UTF-16'?><!-- old --><ep xmlns='http://ms.net/1' testing=' true '>"
      "<in><m><a>192.0.2.99</a></m></in><out><scope><m><a>192.0.2.98</a></m></scope><m>"
      "<a> 192.0.2.1 </a><a><![CDATA[2001:db8::1]]></a><r>198.51.100.0/24</r><r>2001:db8::/32</r>"
      "<x:a xmlns:x='urn:other'>192.0.2.97</x:a><r>192.0.&#50;.4</r><indirect>example.net</indirect></m>"
      "<m><mx/></m></out></ep>\n");
  EXPECT_TRUE(record.testing);
  EXPECT_TRUE(record.exchangers);
  EXPECT_FALSE(record.no_mail_servers);
  std::string networks;
  for (const auto& [address, prefix] : record.networks)
    networks += address.text() + "/" + std::to_string(prefix) + " ";
  EXPECT_EQ(networks, "192.0.2.1/32 2001:db8::1/128 198.51.100.0/24 2001:db8::/32 192.0.2.4/32 ");
  EXPECT_THAT(record.indirect, testing::ElementsAre("example.net"));
}

TEST(CallerIdRecordTest, RefusesWhatIsNoPolicyAndWhatWouldGrow) {
  const std::string bomb =
      "[<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c "
      "\"&b;&b;&b;&b;&b;&b;\">]";
  std::string utf16("<\0e\0p\0/\0>\0", 10);
  std::string deep;
  for (int i = 0; i < 2000; ++i) deep += "<m>";
  const std::string records[] = {
      "",
      "<ep/>",
      "<ep xmlns='http://ms.net/2'/>",
      "<html xmlns='http://ms.net/1'/>",
      "v=spf1 -all",
      "<ep xmlns='http://ms.net/1'><out>",
      policy("<a>1.2.3</a>"),
      policy("<a>www.example.com</a>"),
      policy("<a/>"),
      policy("<r>1.2.3.4/33</r>"),
      policy("<r>1.2.3.4/</r>"),
      policy("<r>1.2.3.4/-1</r>"),
      policy("<a>&lol;</a>"),
      policy("<a>\xFF</a>"),
      "<!DOCTYPE ep " + bomb + ">" + policy("<a>&c;</a>"),
      "<?xml version='1.0'?><!DOCTYPE ep " + bomb + ">" + policy("<a>&c;</a>"),
      "<?xml version='1.0'?><!DOCTYPE ep SYSTEM 'file:///etc/passwd'>" + policy(""),
      "<?xml version='1.0'?>" + std::string("\xEF\xBB\xBF") + policy(""),
      utf16,
      policy(deep),
      policy(std::string(CallerIdRecord::longest, ' ')),
  };
  for (const std::string& record : records) {
    EXPECT_THROW(parse_caller_id_record(record), Error) << record.substr(0, 100);
  }
}

TEST(CallerIdCheck, FindsTheClientInTheRecordOrWhereItLeads) {
  ZoneLookups lookups("");
  lookups.add("example.com MX mail.example.com");
  lookups.add("mail.example.com A 192.0.2.7");
  lookups.add(
      "_ep.example.net TXT " +
      policy("<a>192.0.2.20</a><indirect>Example.COM</indirect><indirect>example.net</indirect><mx/>"));
  lookups.add("example.net MX mail.example.net");
  lookups.add("mail.example.net AAAA 2001:db8::20");
  lookups.add("list._ep.example.org TXT " + policy("<r>198.51.100.0/28</r>"));
  lookups.add("_ep.two.example TXT " + policy(""));
  lookups.add("_ep.two.example TXT " + policy(""));
  lookups.add("_ep.down.example ERROR");
  lookups.add("_ep.broken.example TXT <ep>");

  const struct {
    std::string record;
    const char* client;
    const char* reason;
  } cases[] = {
      {policy("<a>192.0.2.1</a>"), "192.0.2.1", "pass: in the record of example.com"},
      {policy("<a>192.0.2.1</a>"), "192.0.2.2", "fail: no server in the record of example.com"},
      {policy("<a>192.0.2.1</a>", " testing='true'"), "192.0.2.2",
       "fail: no server in the record of example.com (the record is"},
      {policy("<r>192.0.2.0/31</r>"), "192.0.2.1", "pass"},
      {policy("<mx/>"), "192.0.2.7", "pass: in the record of example.com"},
      {policy("<mx/>"), "192.0.2.8", "fail"},
      {"<ep xmlns='http://ms.net/1'><out><noMailServers/></out></ep>", "192.0.2.1",
       "fail: example.com sends no mail"},
      {policy("<indirect>example.net</indirect>"), "192.0.2.20", "pass: in the record of example.net"},
      {policy("<indirect>example.net</indirect>"), "2001:db8::20", "pass: in the record of example.net"},
      {policy("<indirect>example.net</indirect>"), "192.0.2.21", "fail"},
      {policy("<indirect>list._ep.example.org</indirect>"), "198.51.100.1", "pass"},
      {policy("<indirect>none.example</indirect>"), "192.0.2.1",
       "permerror: none.example has no Caller-ID record"},
      {policy("<indirect>two.example</indirect>"), "192.0.2.1", "permerror: _ep.two.example has several"},
      {policy("<indirect>broken.example</indirect>"), "192.0.2.1",
       "permerror: Caller-ID record: not well-formed in"},
      {policy("<indirect>down.example</indirect>"), "192.0.2.1", "temperror"},
      {policy("<indirect>down.example</indirect><indirect>example.net</indirect>"), "192.0.2.20", "pass"},
      {policy("<indirect>..</indirect>"), "192.0.2.1", "permerror"},
      {"<ep>", "192.0.2.1", "permerror"},
      {"", "192.0.2.1", "none"},
  };
  for (const auto& [record, client, reason] : cases)
    EXPECT_THAT(check(record, client, lookups), StartsWith(reason)) << record;
}

TEST(CallerIdCheck, FollowsNoLoopAndNoMoreThanTenDomains) {
  ZoneLookups lookups("");
  std::string many;
  for (int i = 0; i < 400; ++i) many += "<indirect>d" + std::to_string(i) + ".example</indirect>";
  for (int i = 0; i < 400; ++i) lookups.add("_ep.d" + std::to_string(i) + ".example TXT " + policy(many));
  EXPECT_THAT(check(policy("<indirect>d0.example</indirect>"), "192.0.2.1", lookups),
              StartsWith("permerror: the record leads to more than ten domains"));
  EXPECT_EQ(lookups.queries.size(), 10U);
}

}  // namespace
}  // namespace zrl::dns
