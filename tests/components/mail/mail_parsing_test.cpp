#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/mail/mail.h"
#include "core/text/utf8.h"
#include "support/fake_services.h"

namespace zrl::mail {
namespace {

using namespace std::string_literals;

Mail parse(std::string_view source) {
  test::FakeServices console;
  return make(console)->parse(source);
}

// A message with this field and no body.
Mail with_field(std::string_view name, std::string_view value) {
  return parse(std::string(name) + ": " + std::string(value) + "\r\n\r\n");
}

std::string part(std::string_view fields, std::string_view body) {
  return "--B\r\n" + std::string(fields) + "\r\n" + std::string(body) + "\r\n";
}

std::string multipart(std::initializer_list<std::string> parts, std::string_view type = "mixed") {
  std::string source =
      "Content-Type: multipart/" + std::string(type) + "; boundary=\"B\"\r\n\r\npreamble\r\n";
  for (const std::string& text : parts) source += text;
  return source + "--B--\r\nepilogue\r\n";
}

TEST(MailSubjects, AreDecoded) {
  const std::pair<std::string, std::string> cases[] = {
      {"plain", "plain"},
      {"=?utf-8?B?R3LDvMOfZQ==?=", "Grüße"},
      {"=?ISO-8859-1?Q?Gr=FC=DFe_und_mehr?=", "Grüße und mehr"},
      {"a =?utf-8?q?b?= =?utf-8?q?c?= d", "a bc d"},
      {"=?utf-8?q?b?=\r\n =?utf-8?q?c?=", "bc"},
      {"folded\r\n\tline", "folded line"},
      {"=?utf-8?q?=C3?= =?utf-8?q?=A4?=", "ä"},  // a character across two words
      {"=?koi8-r?B?8NLJ18XU?=", "Привет"},
      {"=?iso-2022-jp?B?GyRCRnxLXBsoQg==?=", "日本"},
      {"caf\xE9", "café"},  // bare bytes
      {"caf\xC3\xA9", "café"},
      {"=?no-such-set?q?abc?=", "abc"},
      {"=?iso-8859-1?q?caf\xE9?= =?ks_c_5601-1987?b?jGM=?=", "café똠"},
      {"=?utf-8?B?R3I=?= =?utf-8?B?w7w=?= =?utf-8?B?w59l?=", "Grüße"},
      {"=?utf-8?q?a=0D=0ABcc:_x@y?=", "a  Bcc: x@y"},  // no second line
      {"=?utf-8?q?a=1B[2Jb?=", "a [2Jb"},
      {"=?utf-8?q?open", "=?utf-8?q?open"},
      {"a\0b"s, "a b"},
      {"", ""},
  };
  for (const auto& [field, expected] : cases)
    EXPECT_EQ(with_field("Subject", field).subject, expected) << field;
  EXPECT_EQ(parse("subject : one\nSUBJECT: two\n\n").subject, "one");
}

TEST(MailAddresses, KeepWhatTheyNeedToBeReadAgain) {
  const std::pair<std::string, std::string> cases[] = {
      {"ann@example.com", "ann@example.com"},
      {"Ann <ann@example.com>", "Ann <ann@example.com>"},
      {"=?utf-8?q?M=C3=BCller=2C_Ann?= <ann@example.com>", "\"Müller, Ann\" <ann@example.com>"},
      {"ann@example.com (Ann)", "Ann <ann@example.com>"},
      {"a@b.c,\r\n d@e.f", "a@b.c, d@e.f"},
      {"undisclosed-recipients:;", "undisclosed-recipients:"},
      {"\"=?utf-8?B?QQ==?= =?utf-8?B?Qg==?=\" <a@b>", "AB <a@b>"},
      {"caf\xE9 <a@b>", "café <a@b>"},
      {"a@b (Ex, A.)", "\"Ex, A.\" <a@b>"},
      {"A <no address>, b@c", "A <no address>, b@c"},
      {"<>", "<>"},
      {"", ""},
  };
  for (const auto& [field, expected] : cases) {
    EXPECT_EQ(with_field("From", field).sender, expected) << field;
    EXPECT_EQ(with_field("To", field).recipient, expected) << field;
  }
}

TEST(MailBodies, AreTheFirstTextPartsThatAreNoAttachments) {
  const std::string text = part("Content-Type: text/plain\r\n", "text");
  const std::string html = part("Content-Type: text/html\r\n", "<p>html</p>");
  const std::string attached =
      part("Content-Type: text/plain\r\nContent-Disposition: attachment; filename=a\r\n", "no");
  const std::string inner = part("Content-Type: message/rfc822\r\n", "Subject: inner\r\n\r\nno");
  const std::string image = part("Content-Type: image/png\r\nContent-Transfer-Encoding: base64\r\n", "AAAA");
  const struct {
    std::string source;
    std::string text;
    std::string html;
  } cases[] = {
      {"Subject: x\r\n\r\nbody\r\n", "body\n", ""},
      {"Subject: x\n\nbody\nmore", "body\nmore", ""},
      {"Content-Type: text/html\r\n\r\n<b>", "", "<b>"},
      {"Content-Type: TEXT/HTML\r\n\r\n<b>", "", "<b>"},
      {"Content-Type: image/png\r\n\r\nxyz", "", ""},
      {"Content-Type: rubbish\r\n\r\nxyz", "xyz", ""},
      {"Content-Type: text; name=a/b\r\n\r\nxyz", "xyz", ""},
      {"Content-Disposition: attachment\r\n\r\nxyz", "", ""},
      {"Content-Disposition: inline\r\n\r\nxyz", "xyz", ""},
      {multipart({text, html}, "alternative"), "text", "<p>html</p>"},
      {multipart({html, text}), "text", "<p>html</p>"},
      {multipart({text, part("", "second"), html, html}), "text", "<p>html</p>"},
      {multipart({attached, image, inner, text}), "text", ""},
      {multipart({attached, image, inner}), "", ""},
      {multipart({part("", "no type")}), "no type", ""},
      {multipart({"--B\r\nno header\r\n\r\nmore\r\n"}), "no header\n\nmore", ""},
      // The closing boundary is missing; a boundary of which another begins; blanks after one.
      {"Content-Type: multipart/mixed; boundary=B\n\n--B\n\ntext", "text", ""},
      {"Content-Type: multipart/mixed; boundary=B\n\n--BB\n\nno\n--B \t\n\ntext\n--B-\n--Bx\n--B--",
       "text\n--B-\n--Bx", ""},
      {"Content-Type: multipart/mixed\n\n--B\n\nno\n--B--", "", ""},
      {"Content-Type: multipart/mixed; boundary=\"\"\n\n--\n\ntext\n----", "text", ""},
      // Inner multiparts, the inner boundary being a continuation of the outer one, and unclosed.
      {"Content-Type: multipart/mixed; boundary=B\n\n--B\nContent-Type: multipart/alternative; "
       "boundary=BC\n\n"
       "--BC\n\ntext\n--BC\nContent-Type: text/html\n\nhtml\n--B\nContent-Disposition: "
       "attachment\n\nno\n--B--\n",
       "text", "html"},
  };
  for (const auto& expected : cases) {
    const Mail mail = parse(expected.source);
    EXPECT_EQ(mail.text_body, expected.text) << expected.source;
    EXPECT_EQ(mail.html_body, expected.html) << expected.source;
  }
}

TEST(MailBodies, AreDecoded) {
  const struct {
    std::string type;
    std::string transfer;
    std::string body;
    std::string expected;
  } cases[] = {
      {"utf-8", "8bit", "Grüße\r\n", "Grüße\n"},
      {"utf-8", "quoted-printable", "Gr=C3=BC=\r\n=C3=9Fe=20", "Grüße "},
      {"utf-8", "BASE64", "R3LDvMOfZQ0KZW5k", "Grüße\nend"},
      {"utf-8", "base64", "R3LD\r\nvMOf!!!\r\nZQ==trailing", "Grüße"},
      {"utf-8", "base64", "R3LDvMOfZQ=", "Grüße"},
      {"utf-8", "base64", "R3LDvMOf=R3LD", "Grüß"},
      {"iso-8859-1", "8bit",
       "Gr\xFC\xDF"
       "e \x80",
       "Grüße €"},
      {"\"ISO-8859-15\"", "quoted-printable", "=A4", "€"},
      {"windows-1251", "8bit", "\xCF\xF0", "Пр"},
      {"gb2312", "8bit", "\xC4\xE3\xBA\xC3", "你好"},
      {"shift_jis", "8bit", "\x93\xFA\x96{", "日本"},
      {"utf-16le", "base64", "aABpAA==", "hi"},
      {"utf-16be", "base64", "AGgAaQ==", "hi"},
      {"us-ascii", "8bit", "caf\xC3\xA9", "café"},
      {"us-ascii", "8bit", "\xC3\xA9\xC3", "é\xEF\xBF\xBD"},
      {"us-ascii", "8bit", "caf\xE9", "café"},
      {"x-unknown", "8bit", "caf\xE9", "café"},
      {"../../etc/passwd//TRANSLIT", "8bit", "caf\xE9", "café"},
      {"utf-8", "8bit",
       "a\xFF"
       "b\xC3",
       "a\xEF\xBF\xBD"
       "b\xEF\xBF\xBD"},
      {"utf-8", "8bit", "a\0b"s,
       "a\xEF\xBF\xBD"
       "b"},
      {"euc-jp", "8bit", "a\xFF", "a\xEF\xBF\xBD"},
      {"utf-8", "no-such-encoding", "as=20is", "as=20is"},
      {"utf-8", "8bit", "a\rb\r\nc\n\r", "a\nb\nc\n\n"},
  };
  for (const auto& expected : cases) {
    const std::string source = "Content-Type: text/plain; charset=" + expected.type +
                               "\r\nContent-Transfer-Encoding: " + expected.transfer + "\r\n\r\n" +
                               expected.body;
    const std::string text = parse(source).text_body;
    EXPECT_EQ(text, expected.expected) << source;
    EXPECT_TRUE(is_valid_utf8(text));
  }
  EXPECT_EQ(parse("\r\ncaf\xE9").text_body, "café");
}

TEST(BrokenMails, ReadAsFarAsTheyGo) {
  EXPECT_EQ(parse("").text_body, "");
  EXPECT_EQ(parse("just text\r\nSubject: no").text_body, "just text\nSubject: no");
  EXPECT_EQ(parse("just text\r\nSubject: no").subject, "");
  EXPECT_EQ(parse("From ann Sat Jan 1\nSubject: box\n\nx").subject, "box");
  EXPECT_EQ(parse("From ann Sat Jan 1").text_body, "");
  // A line in the header that is none.
  const Mail mail = parse("Subject: one\r\nno field here\r\nFrom: a@b.c\r\nContent-Type: text/html\r\n\r\nx");
  EXPECT_EQ(mail.subject, "one");
  EXPECT_EQ(mail.sender, "a@b.c");
  EXPECT_EQ(mail.html_body, "x");
  EXPECT_EQ(parse("Subject: end of file").subject, "end of file");
  EXPECT_EQ(parse("Subject: \0\xFF\xFE"s).subject, "ÿþ");
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

// Each would take gigabytes, minutes or the whole stack if it were followed to its end.
TEST(MailBombs, CostNoMoreThanTheirSize) {
  std::string deep;
  for (int i = 0; i < 5000; ++i) {
    const std::string boundary = "b" + std::to_string(i);
    deep += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
  }
  EXPECT_EQ(parse(deep + "\ntext" + repeated("\n--", 3'000'000)).text_body, "");
  EXPECT_EQ(parse(repeated("a: b\n", 3'000'000) + "Subject: x\n\nbody").text_body, "body");
  const std::string type = "Content-Type: multipart/mixed; boundary=b\n";
  EXPECT_EQ(parse(type + "\n" + repeated("--b\nContent-Type: image/x\n\n", 500'000)).text_body, "");
  EXPECT_EQ(parse(type + "Subject: x\n\n" + repeated("--bb\n", 2'000'000) + "--b\n\ntext").text_body, "text");
  for (const char* text :
       {"a:", "a@b.c, ", "(", "<", "\"", "=?utf-8?q?a?= ", "=?x?b?", "@", ";", "[", "\\"}) {
    const std::string field = repeated(text, 1'000'000);
    EXPECT_LE(with_field("To", field).recipient.size(), std::size_t{300} << 10) << text;
    EXPECT_LE(with_field("Subject", field).subject.size(), MailMessage::longest_subject) << text;
    (void)parse("Content-Type: text/plain; " + field + "\nContent-Disposition: " + field + "\n\nx");
  }
  EXPECT_EQ(parse("Subject: x\n\n" + std::string(1'000'000, 'y')).text_body.size(), 1'000'000u);
}

TEST(MailBodies, AreCutBetweenCharactersWhereTheyAreTooLong) {
  const std::string base64 =
      "Content-Transfer-Encoding: base64\n\n" + repeated("8J+YgPCfmIDwn5iA\n", 1'200'000);
  const Mail mail = parse("x: y\nContent-Type: text/plain; charset=utf-8\n" + base64);
  EXPECT_LE(mail.text_body.size(), MailMessage::longest_body);
  EXPECT_GE(mail.text_body.size(), MailMessage::longest_body - 4);
  EXPECT_TRUE(is_valid_utf8(mail.text_body));
  EXPECT_EQ(mail.text_body.substr(mail.text_body.size() - 4), "😀");
}

}  // namespace
}  // namespace zrl::mail
