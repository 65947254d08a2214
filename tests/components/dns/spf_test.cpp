#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/dns/spf_check.h"
#include "components/dns/spf_macros.h"
#include "components/dns/spf_record.h"
#include "support/zone_lookups.h"

namespace zrl::dns {
namespace {

using test::ZoneLookups;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// The zones of RFC 7208, appendix A, and names for the cases of its text.
constexpr std::string_view zone = R"(example.com A 192.0.2.10
example.com A 192.0.2.11
example.com MX mail-a.example.com
example.com MX mail-b.example.com
mail-a.example.com A 192.0.2.129
mail-b.example.com A 192.0.2.130
mail-a.example.com AAAA 2001:db8::129
amy.example.com A 192.0.2.65
bob.example.com A 192.0.2.66
example.org MX mail-c.example.org
mail-c.example.org A 192.0.2.140
192.0.2.65 PTR amy.example.com
192.0.2.140 PTR mail-c.example.org
10.0.0.4 PTR bob.example.com
ip4._spf.example.com TXT v=spf1 -ip4:192.0.2.0/24 +all
ptr._spf.example.com TXT v=spf1 -ptr:example.com +all
mary.mobile-users._spf.example.com A 127.0.0.2
pass.test.example TXT something else
pass.test.example TXT V=SPF1 IP4:192.0.2.1 -ALL
pass.test.example TXT v=spf10 -all
fail.test.example TXT v=spf1 -all exp=why.test.example
why.test.example TXT %{i} is not one of %{o}'s
softfail.test.example TXT v=spf1 ~all
neutral.test.example TXT v=spf1 ?all
silent.test.example TXT v=spf1
broken.test.example TXT v=spf1 ipv4:192.0.2.1
two.test.example TXT v=spf1 -all
two.test.example TXT v=spf1 +all
down.test.example ERROR
loop.test.example TXT v=spf1 include:loop.test.example -all
ping.test.example TXT v=spf1 redirect=pong.test.example
pong.test.example TXT v=spf1 redirect=ping.test.example
own.test.example TXT v=spf1 a:%{d} exists:%{l}.%{d} ?all
own.test.example A 192.0.2.77
a.down.example MX down.test.example
)";

std::string check(std::string_view record, std::string_view client, ZoneLookups& lookups,
                  const std::string& domain = "example.com") {
  const SenderCheck found =
      check_spf({*IpAddress::parse(client), domain, std::string(record), "mary@" + domain}, lookups);
  EXPECT_EQ(found.authorised, found.reason.starts_with("pass: ")) << found.reason;
  return found.reason;
}

std::string check(std::string_view record, std::string_view client = "192.0.2.1") {
  ZoneLookups lookups(zone);
  return check(record, client, lookups);
}

// The examples of RFC 7208, section 7.4, and what its grammar allows besides.
TEST(SpfMacros, Expand) {
  const std::pair<const char*, const char*> cases[] = {
      {"%{s}", "strong-bad@email.example.com"},
      {"%{o}", "email.example.com"},
      {"%{d}", "email.example.com"},
      {"%{d4}", "email.example.com"},
      {"%{d3}", "email.example.com"},
      {"%{d2}", "example.com"},
      {"%{d1}", "com"},
      {"%{dr}", "com.example.email"},
      {"%{d2r}", "example.email"},
      {"%{l}", "strong-bad"},
      {"%{l-}", "strong.bad"},
      {"%{lr}", "strong-bad"},
      {"%{lr-}", "bad.strong"},
      {"%{l1r-}", "strong"},
      {"%{ir}.%{v}._spf.%{d2}", "3.2.0.192.in-addr._spf.example.com"},
      {"%{lr-}.lp.%{ir}.%{v}._spf.%{d2}", "bad.strong.lp.3.2.0.192.in-addr._spf.example.com"},
      {"%{ir}.%{v}.%{l1r-}.lp._spf.%{d2}", "3.2.0.192.in-addr.strong.lp._spf.example.com"},
      {"%{S}", "strong-bad%40email.example.com"},
      {"%{D99999999999999999999R}", "com.example.email"},
      {"%{s.@+}", nullptr},
      {"%{l+-,/_=1}", nullptr},
      {"a%%b%_c%-.%{d}", "a%b c%20.email.example.com"},
      {"%{d}.", nullptr},
      {"%{d}.museum.", "email.example.com.museum"},
      {"%{d0}", nullptr},
      {"%{x}", nullptr},
      {"%{c}", nullptr},
      {"%{d", nullptr},
      {"%{}", nullptr},
      {"%{dR2}", nullptr},
      {"%d.example.com", nullptr},
      {"example.com%", nullptr},
      {"museum", nullptr},
      {"%{d}com", nullptr},
      {"example.1", nullptr},
      {"example.c-", nullptr},
      {"exa mple.com", nullptr},
      {"ex\xE4mple.com", nullptr},
      {"", nullptr},
  };
  const MacroString::Values values = [](char letter) -> std::string {
    switch (letter) {
      case 's':
        return "strong-bad@email.example.com";
      case 'l':
        return "strong-bad";
      case 'i':
        return "192.0.2.3";
      case 'v':
        return "in-addr";
      default:
        return "email.example.com";
    }
  };
  for (const auto& [text, expected] : cases) {
    const auto parsed = MacroString::parse(text, MacroString::Use::domain);
    ASSERT_EQ(parsed.has_value(), expected != nullptr) << text;
    if (!parsed) continue;
    EXPECT_EQ(parsed->expand_to_name(values), expected) << text;
  }
  // A name that became too long loses labels at its beginning.
  std::string text = "%{d}";
  for (int i = 0; i < 30; ++i) text += ".%{d}";
  const std::string name = MacroString::parse(text, MacroString::Use::domain)->expand_to_name(values);
  EXPECT_LE(name.size(), 253U);
  EXPECT_THAT(name, StartsWith("email.example.com.email."));
}

TEST(SpfRecordTest, AWrongTermAnywhereIsAPermanentError) {
  for (const char* terms : {"all",
                            "ALL",
                            "-All",
                            "a/24",
                            "a//64",
                            "A/24//64",
                            "a:example.com/0//0",
                            "mx:%{d}/32",
                            "ptr",
                            "ptr:a.b",
                            "ip4:1.2.3.4",
                            "ip4:1.2.3.4/0",
                            "ip6:::",
                            "ip6:2001:DB8::/32",
                            "ip6:::ffff:1.2.3.4/96",
                            "  all  ",
                            "exists:%{i}.a.b",
                            "moo.cow-far_out=man:dog/cat",
                            "x=",
                            "all=x",
                            "include=1",
                            "redirect=a.b exp=c.d",
                            "a:a.b-c.",
                            "a:%{d=}",
                            "a:x/y.com",
                            "Redirect=%{d}"}) {
    EXPECT_NO_THROW(parse_spf_record(std::string("v=spf1 ") + terms)) << terms;
  }
  for (const char* terms : {"all:",
                            "all/8",
                            "all:a.b",
                            "include",
                            "include:",
                            "include:a.b/24",
                            "exists",
                            "a:",
                            "a:/24",
                            "a/33",
                            "a/",
                            "a//129",
                            "a/24/64",
                            "a/08",
                            "a/1//",
                            "mx/99999999999999999999",
                            "ptr/24",
                            "ptr:a.b/24",
                            "ip4",
                            "ip4:",
                            "ip4:1.2.3",
                            "ip4:1.2.3.04",
                            "ip4:1.2.3.4/33",
                            "ip4:1.2.3.4//32",
                            "ip4:::1",
                            "ip6:1.2.3.4",
                            "ip6:::1/129",
                            "ip6:::g",
                            "+-all",
                            "--all",
                            "foo",
                            "foo:bar",
                            "redirect:a.b",
                            "redirect=",
                            "exp=",
                            "+redirect=a.b",
                            "redirect=a.b redirect=a.b",
                            "exp=a.b EXP=a.b",
                            "x=%",
                            "x=%{z}",
                            "1x=y",
                            "=y",
                            "a\tmx",
                            "a,mx",
                            "a:a.b:25",
                            "v=spf1 -all %",
                            "all\xC3\xA9"}) {
    EXPECT_THROW(parse_spf_record(std::string("v=spf1 ") + terms), SenderFault) << terms;
  }
  for (const char* text : {"", "v=spf", "v=spf10", "v=spf1\t", " v=spf1", "spf2.0/pra"}) {
    EXPECT_FALSE(is_spf_record(text)) << text;
  }
}

TEST(SpfCheck, DecidesAsTheExamplesTell) {
  const struct {
    const char* record;
    const char* client;
    const char* reason;
  } cases[] = {
      {"v=spf1 +all", "192.0.2.1", "pass: +all in the record of example.com"},
      {"v=spf1 a -all", "192.0.2.11", "pass: a in"},
      {"v=spf1 a -all", "192.0.2.12", "fail: -all in the record of example.com"},
      {"v=spf1 a:example.org -all", "192.0.2.10", "fail"},
      {"v=spf1 mx -all", "192.0.2.130", "pass: mx"},
      {"v=spf1 mx -all", "2001:db8::129", "pass: mx"},
      {"v=spf1 mx mx:example.org -all", "192.0.2.140", "pass: mx:example.org"},
      {"v=spf1 mx/30 mx:example.org/30 -all", "192.0.2.131", "pass: mx/30"},
      {"v=spf1 mx/30 mx:example.org/30 -all", "192.0.2.143", "pass"},
      {"v=spf1 mx/30 mx:example.org/30 -all", "192.0.2.144", "fail"},
      {"v=spf1 mx/30//112 -all", "2001:db8::1", "pass"},
      {"v=spf1 mx/0 -all", "2001:db8::1", "fail"},
      {"v=spf1 ptr -all", "192.0.2.65", "pass: ptr"},
      {"v=spf1 ptr -all", "192.0.2.140", "fail"},
      {"v=spf1 ptr -all", "10.0.0.4", "fail"},
      {"v=spf1 ptr:ample.com -all", "192.0.2.65", "fail"},
      {"v=spf1 ip4:192.0.2.128/28 -all", "192.0.2.65", "fail"},
      {"v=spf1 ip4:192.0.2.128/28 -all", "::ffff:192.0.2.129", "pass: ip4"},
      {"v=spf1 ip6:2001:db8::/33 -all", "2001:db8:7fff::1", "pass: ip6"},
      {"v=spf1 ip6:2001:db8::/33 -all", "2001:db8:8000::1", "fail"},
      {"v=spf1 -include:ip4._spf.%{d} -include:ptr._spf.%{d} +all", "192.0.2.65", "pass: +all"},
      {"v=spf1 -include:ip4._spf.%{d} -include:ptr._spf.%{d} +all", "192.0.2.1", "fail: -include:ptr"},
      {"v=spf1 exists:%{l}.mobile-users._spf.%{d} -all", "2001:db8::1", "pass: exists"},
      {"v=spf1 a:%{p} ~all", "192.0.2.65", "pass: a:%{p}"},
      {"v=spf1 ?a:%{p} ~all", "192.0.2.66", "softfail"},
      {"v=spf1", "192.0.2.1", "neutral: nothing in the record of example.com matches"},
      {"v=spf1 redirect=own.test.example", "192.0.2.77", "pass: a:%{d} in the record of own.test.example"},
      {"v=spf1 redirect=silent.test.example -all", "192.0.2.1", "fail: -all in the record of example.com"},
      {"v=spf1 redirect=fail.test.example exp=no.example", "192.0.2.1",
       "fail: -all in the record of fail.test.example (192.0.2.1 is not one of example.com's)"},
      {"", "192.0.2.1", "none"},
      {"-all", "192.0.2.1", "none"},
  };
  for (const auto& [record, client, reason] : cases)
    EXPECT_THAT(check(record, client), StartsWith(reason)) << record;
  ZoneLookups lookups(zone);
  for (const char* domain : {"example", "a..example.com", "", ".example.com"}) {
    EXPECT_THAT(check("v=spf1 +all", "192.0.2.1", lookups, domain), StartsWith("none")) << domain;
  }
  EXPECT_THAT(check("v=spf1 a:" + std::string(64, 'a') + ".example.com -all"), StartsWith("fail"));
}

TEST(SpfCheck, TellsWhatItAssumesOfTheMail) {
  const std::pair<const char*, const char*> cases[] = {
      {"exists:%{l}.%{h} -all", " (assumed: local part \"postmaster\", greeting \"example.com\")"},
      {"exists:%{S}.%{l}.x -all", " (assumed: local part \"postmaster\")"},
      {"include:%{h1r}.none -all", " (assumed: greeting \"example.com\")"},
      {"exists:%{p}.x -all", " (assumed: host name \"unknown\")"},
      {"exists:%{d}.%{o}.%{i}.%{v} -all", "the record of example.com"},
      {"-all exists:%{h}", "the record of example.com"},
  };
  for (const auto& [terms, end] : cases) {
    ZoneLookups lookups(zone);
    const std::string record = std::string("v=spf1 ") + terms;
    const auto client = *IpAddress::parse("192.0.2.1");
    EXPECT_THAT(check_spf({client, "example.com", record, "postmaster@example.com"}, lookups).reason,
                testing::EndsWith(end))
        << terms;
  }
  EXPECT_THAT(check("v=spf1 exists:%{l}.x -all"), testing::EndsWith("the record of example.com"));
  // A macro is no term, so it uses up none of the ten look-ups.
  EXPECT_THAT(check("v=spf1 a a a a a a a a a a:%{p} +all", "192.0.2.65"), StartsWith("pass"));
}

// RFC 7208, section 5.2, and what records of others and failures of the DNS make of a check.
TEST(SpfCheck, TakesOverWhatGoesWrongElsewhere) {
  const std::pair<const char*, const char*> cases[] = {
      {"include:pass.test.example", "pass: include:pass.test.example in the record of example.com"},
      {"include:fail.test.example", "neutral"},
      {"include:softfail.test.example", "neutral"},
      {"include:neutral.test.example", "neutral"},
      {"include:silent.test.example", "neutral"},
      {"include:two.test.example", "permerror: two.test.example has several SPF records"},
      {"include:broken.test.example",
       "permerror: unknown mechanism \"ipv4:192.0.2.1\" in the record of broken.test.example"},
      {"include:none.test.example", "permerror: include:none.test.example leads to none.test.example, which"},
      {"include:%{l}", "permerror"},
      {"redirect=none.test.example", "permerror"},
      {"redirect=down.test.example", "temperror: no answer from the DNS for down.test.example"},
      {"include:down.test.example", "temperror"},
      {"a:down.test.example +all", "temperror"},
      {"mx:down.test.example +all", "temperror"},
      {"mx:a.down.example +all", "temperror"},
      {"exists:down.test.example +all", "temperror"},
      {"+all a:down.test.example", "pass"},
      {"+all foo", "permerror: unknown mechanism \"foo\" in the record of example.com"},
  };
  for (const auto& [terms, reason] : cases) {
    EXPECT_THAT(check(std::string("v=spf1 ") + terms), StartsWith(reason)) << terms;
  }
}

TEST(SpfCheck, EndsAfterTenLookUpsOrTwoInVain) {
  ZoneLookups lookups(zone);
  std::string ten = "v=spf1";
  for (int i = 0; i < 10; ++i) ten += " a";
  EXPECT_THAT(check(ten + " +all", "192.0.2.1", lookups), StartsWith("pass"));
  EXPECT_THAT(check(ten + " mx +all", "192.0.2.1", lookups), StartsWith("permerror: the record needs more"));
  EXPECT_THAT(check(ten + " redirect=pass.test.example", "192.0.2.1", lookups), StartsWith("permerror"));
  lookups.queries.clear();
  EXPECT_THAT(check("v=spf1 a:no.example mx:no.example +all", "192.0.2.1", lookups), StartsWith("pass"));
  EXPECT_THAT(check("v=spf1 ptr a:no.example exists:no.example +all", "192.0.2.1", lookups),
              StartsWith("permerror: too many DNS look-ups find nothing, the last one no.example"));
  EXPECT_THAT(lookups.queries,
              ElementsAre("A no.example", "MX no.example", "PTR 192.0.2.1", "A no.example", "A no.example"));
  for (const char* endless : {"include:loop.test.example", "redirect=ping.test.example"}) {
    lookups.queries.clear();
    EXPECT_THAT(check(std::string("v=spf1 ") + endless, "192.0.2.1", lookups), StartsWith("permerror"));
    EXPECT_EQ(lookups.queries.size(), 10U);
  }
}

TEST(SpfCheck, LooksAtTenNamesOfATerm) {
  ZoneLookups lookups("");
  for (int i = 0; i < 11; ++i) {
    const std::string name = "h" + std::to_string(i) + ".example.com";
    lookups.add("example.com MX " + name);
    lookups.add("192.0.2.1 PTR " + name);
    if (i != 10) lookups.add("ten.example.com MX " + name);
  }
  lookups.add("h9.example.com A 192.0.2.9");
  lookups.add("h10.example.com A 192.0.2.1");
  EXPECT_THAT(check("v=spf1 mx +all", "192.0.2.1", lookups), HasSubstr("too many mail exchangers"));
  EXPECT_THAT(check("v=spf1 mx:ten.example.com -all", "192.0.2.9", lookups), StartsWith("pass"));
  EXPECT_THAT(check("v=spf1 ptr -all", "192.0.2.1", lookups), StartsWith("fail"));
}

}  // namespace
}  // namespace zrl::dns
