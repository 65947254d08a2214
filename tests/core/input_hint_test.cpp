#include "core/input_hint.h"

#include <string>

#include <gtest/gtest.h>

#include "core/console.h"
#include "core/contracts/regexp.h"
#include "core/text/error.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

// Refuses patterns with an opening bracket alone.
class FakeRegExp : public RegExp {
 public:
  void set_pattern(std::string_view pattern, Options) override {
    if (pattern.find('(') != pattern.npos) throw Error(5020, "Expected ')'");
  }
  void set_pattern(std::u16string_view, Options) override {}
  bool find(std::string_view, std::size_t, RegExpMatch&) override { return false; }
  bool find(std::u16string_view, std::size_t, RegExpMatch&) override { return false; }
  bool limit_reached() const override { return false; }
};

class InputHintTest : public testing::Test {
 protected:
  InputHintTest() {
    console.components().add<RegExp>([] { return std::make_shared<FakeRegExp>(); });
  }

  // "text" or "text..." where more may mend it.
  std::string hint(const Expectation& expected, std::string_view text) {
    const InputHint found = input_hint(console, expected, text);
    return found.text + (found.unfinished ? "..." : "");
  }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console{folder.path(), host};
};

struct Case {
  Expectation expected;
  const char* text;
  const char* hint;
};

TEST_F(InputHintTest, SaysWhatDoesNotFit) {
  const Case cases[] = {
      {expects::domain, "https://spam.example/x", "This is a web address; only its domain belongs here"},
      {expects::domain, "spam .example", "There is a blank in the domain"},
      {expects::domain, "192.0.2.1", "This is an IP number, not a domain"},
      {expects::domain, "a@spam.example", "This is a mail address, not a domain"},
      {expects::domain, "spam.example/x", "There is a slash in the domain"},
      {expects::domain, "m\xC3\xBCll.example", "A domain with other letters is written in its form xn--..."},
      {expects::domain, "spam..example", "This is no domain"},
      {expects::domain, "spam", "A domain has a dot, such as example.com..."},
      {expects::ip_number, "192.0.2", "An IP number has four numbers, such as 192.0.2.1..."},
      {expects::ip_number, "192.0.2.256", "Four numbers from 0 to 255 make an IP number"},
      {expects::ip_number, "192.0.2.0/24", "This is a network; those have lists of their own"},
      {expects::ip_number, "2001:db8::1", "Only IPv4 numbers, such as 192.0.2.1"},
      {expects::ip_number, "spam.example", "An IP number has four numbers, such as 192.0.2.1"},
      {expects::network, "192.0.2.0", "A network has a slash and a length, such as 192.0.2.0/24..."},
      {expects::network, "192.0.2.0/33", "The length behind the slash is from 1 to 32"},
      {expects::network, "192.0.2/24", "An IP number has four numbers, such as 192.0.2.1"},
      {expects::mail_address, "nobody", "An address needs an at sign..."},
      {expects::mail_address, "a@b@c.example", "There is more than one at sign"},
      {expects::mail_address, "a b@c.example", "There is a blank in the address"},
      {expects::mail_address, "a@", "Behind the at sign stands a domain..."},
      {expects::host, "http://mail.example", "This is a web address; only the name of the host belongs here"},
      {expects::port, "99999", "A whole number from 1 to 65535"},
      {expects::port, "smtp", "A whole number from 1 to 65535"},
      {expects::keyword, "REGEX[a(b]", "The regular expression is broken: Expected ')'"},
      {expects::keyword, "REGEX[ab", "A regular expression ends with a bracket: REGEX[...]..."},
      {expects::keyword, "Regex[ab]", "Written so, this is a plain word; write REGEX[...]"},
      {expects::expression, "a(b", "The regular expression is broken: Expected ')'"},
      {expects::reply, "hello there", "Each line begins with the code of the reply, such as 250"},
      {expects::reply, "250hello", "Behind the code stands a blank"},
      {expects::reply, "220 one\r\n220 two", "In all lines but the last, a hyphen stands behind the code"},
      {expects::reply, "220-one", "In the last line, a blank stands behind the code"},
      {expects::file_name, "x/y.exe", "A file name has no folder"},
  };
  for (const Case& one : cases) EXPECT_EQ(hint(one.expected, one.text), one.hint) << one.text;
}

TEST_F(InputHintTest, SaysNothingOfWhatFits) {
  const Case cases[] = {
      {expects::domain, " spam.example ", ""},
      {expects::domain, "@*spam.example", ""},
      {expects::domain, "", ""},
      {expects::ip_number, "192.0.2.1", ""},
      {expects::domain_or_ip_number, "192.0.2.1", ""},
      {expects::domain_or_ip_number, "mail.example", ""},
      {expects::network, "192.0.2.0/24", ""},
      {expects::mail_address, "a@b.example", ""},
      {expects::domain_or_mail, "a@b.example", ""},
      {expects::host, "mail", ""},
      {expects::host, "192.0.2.1", ""},
      {expects::port, "25", ""},
      {expects::keyword, "buy [now]", ""},
      {expects::keyword, "regex[a+b]", ""},
      {expects::reply, "220-one\r\n220 two", ""},
      {expects::reply, "250", ""},
      {{}, "anything at all", ""},
  };
  for (const Case& one : cases) EXPECT_EQ(hint(one.expected, one.text), one.hint) << one.text;
}

TEST_F(InputHintTest, TakesAnyText) {
  const std::string noise("\xFF\x00\xC3(", 4);
  std::string text;
  while (text.size() < 1'000'000) text += noise;
  for (const Expectation& expected : {expects::domain, expects::network, expects::mail_address, expects::host,
                                      expects::port, expects::reply, expects::expression}) {
    EXPECT_LT(input_hint(console, expected, text).text.size(), 300u);
  }
}

}  // namespace
}  // namespace zrl
