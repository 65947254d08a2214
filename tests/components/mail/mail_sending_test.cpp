#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/mail/mail.h"
#include "core/text/error.h"
#include "support/fake_services.h"
#include "support/smtp_sink.h"

namespace zrl::mail {
namespace {

using namespace std::string_literals;
using test::SmtpSink;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using namespace std::chrono_literals;

const Mail plain_mail{"ann@example.com", "bob@example.org", "Hello", "Hi Bob", ""};

MailServer at(const SmtpSink& sink) {
  return {"127.0.0.1", sink.port()};
}

// What keeps the mail from being sent; empty if nothing does.
std::string problem_of_sending(const Mail& mail, const MailServer& server, test::FakeServices& console,
                               Limits limits = {}) {
  try {
    make(console, limits)->send(mail, server);
  } catch (const Error& error) {
    return std::to_string(error.number()) + " " + error.what();
  }
  return {};
}

std::string problem_of_sending(const Mail& mail, const MailServer& server) {
  test::FakeServices console;
  return problem_of_sending(mail, server, console);
}

void send(const Mail& mail, const MailServer& server) {
  test::FakeServices console;
  make(console)->send(mail, server);
}

// What the recipient sees.
Mail sent_and_read(const Mail& mail) {
  const SmtpSink sink;
  send(mail, at(sink));
  test::FakeServices console;
  return make(console)->parse(sink.mails().at(0).data);
}

TEST(Sending, HandsOverEnvelopeAndMessage) {
  const SmtpSink sink;
  Mail mail = plain_mail;
  mail.recipient = "Bob <bob@example.org>; carol@example.net, ";
  send(mail, at(sink));
  ASSERT_EQ(sink.mails().size(), 1u);
  const SmtpSink::Mail taken = sink.mails()[0];
  EXPECT_EQ(taken.sender, "ann@example.com");
  EXPECT_THAT(taken.recipients, ElementsAre("bob@example.org", "carol@example.net"));
  EXPECT_FALSE(taken.encrypted);
  EXPECT_THAT(taken.data, HasSubstr("From: ann@example.com\r\n"));
  EXPECT_THAT(taken.data, HasSubstr("To: Bob <bob@example.org>,\r\n carol@example.net\r\n"));
  EXPECT_THAT(taken.data, HasSubstr("Subject: Hello\r\n"));
  EXPECT_THAT(taken.data, HasSubstr("Date: "));
  EXPECT_THAT(taken.data, MatchesRegex(".*\r\nMessage-Id: <[^<>@ ]+@example\\.com>\r\n.*"));
  EXPECT_THAT(taken.data, MatchesRegex(".*\r\nMIME-Version: 1\\.0\r\n.*"));
  EXPECT_THAT(taken.data, HasSubstr("\r\n\r\nHi Bob"));
}

TEST(Sending, BringsEveryTextAcross) {
  const std::string long_word(3000, 'w');
  const Mail mails[] = {
      plain_mail,
      {"\"Müller, Ann\" <ann@example.com>", "Bøb <bob@example.org>, c@d.e", "Grüße — 日本 😀",
       "Grüße\n日本\n", "<p>Grüße</p>"},
      {"ann@example.com", "bob@example.org", "", "", ""},
      {"ann@example.com", "bob@example.org", "x", "", "<p>only HTML</p>"},
      {"ann@example.com", "bob@example.org", "dots", ".\n..\n.dot\n\n.\nQUIT\n", ""},
      {"\"A. \\\"\\\\ Ex\" <ann@example.com>", "=?utf-8?q?no?= <bob@example.org>",
       "=?utf-8?q?not_a_word?=", "From here\n--B\n=20\n", ""},
      {"ann@example.com", "bob@example.org", std::string(200, 'a') + " " + std::string(300, 'b'), long_word,
       long_word},
      {"ann@example.com", "bob@example.org", "日本語", "日本語日本語", "<p>\xE2\x80\xA8</p>"},
      {"ann@example.com", "bob@example.org", "ends", "no line end", "trailing blanks  \n\n\n"},
  };
  for (const Mail& mail : mails) {
    const Mail read = sent_and_read(mail);
    EXPECT_EQ(read.sender, mail.sender);
    EXPECT_EQ(read.recipient, mail.recipient);
    EXPECT_EQ(read.subject, mail.subject);
    // The last line may get an end on its way.
    const auto ended = [](std::string text) {
      return text.empty() || text.ends_with('\n') ? text : text + "\n";
    };
    EXPECT_EQ(ended(read.text_body), ended(mail.text_body));
    EXPECT_EQ(ended(read.html_body), ended(mail.html_body));
  }
}

TEST(Sending, KeepsToTheLimitsOfMail) {
  const SmtpSink sink;
  Mail mail = plain_mail;
  mail.subject = "Grüße " + std::string(5000, 's');
  mail.text_body = std::string(100'000, 'x') + "\rä\0ö\xFF"s;
  mail.html_body = std::string(5000, '<');
  send(mail, at(sink));
  const std::string data = sink.mails().at(0).data;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = data.find("\r\n", begin)) != data.npos; begin = end + 2) {
    EXPECT_LE(end - begin, 998u);
  }
  for (const char c : data) ASSERT_TRUE((c >= ' ' && c < '\x7F') || c == '\r' || c == '\n' || c == '\t');
}

// Whatever stands in a text, the mail has the fields and recipients that it should.
TEST(Sending, LetsNoTextAddAFieldOrACommand) {
  const std::string injected = "x\r\nBcc: eve@example.net\r\n\r\nbody\r\n.\r\nMAIL FROM:<eve@example.net>";
  Mail mail = plain_mail;
  mail.subject = injected + "\0\n\r"s;
  const SmtpSink sink;
  send(mail, at(sink));
  EXPECT_THAT(sink.mails().at(0).data, Not(HasSubstr("\nBcc")));
  EXPECT_EQ(sink.mails().at(0).data.find("eve@example.net\r\n\r\n"), std::string::npos);
  EXPECT_THAT(sink.mails().at(0).recipients, ElementsAre("bob@example.org"));
  for (std::string Mail::* field : {&Mail::sender, &Mail::recipient}) {
    for (const std::string& text : {injected, "a@b\r\nRCPT TO:<c@d>"s, "A\nB <a@b.c>"s, "a@b.c\0"s,
                                    "\"a\r\n\" <a@b.c>"s, "a@b> SIZE=1 <c"s, ""s}) {
      Mail bad = plain_mail;
      bad.*field = text;
      EXPECT_THAT(problem_of_sending(bad, at(sink)),
                  HasSubstr(field == &Mail::sender ? "the sender" : "the recipient"))
          << text;
    }
  }
  for (const char* host :
       {"127.0.0.1:26", "127.0.0.1/x", "a@127.0.0.1", "127.0.0.1\r\n", "", "127.0.0.1?x"}) {
    EXPECT_THAT(problem_of_sending(plain_mail, {host, sink.port()}), HasSubstr("no host")) << host;
  }
  EXPECT_EQ(sink.mails().size(), 1u);
}

TEST(Sending, RefusesWhatIsTooMuch) {
  Mail mail = plain_mail;
  mail.subject = std::string(MailMessage::longest_subject + 1, 'x');
  EXPECT_THAT(problem_of_sending(mail, {"127.0.0.1", 1}), HasSubstr("too long"));
  mail = plain_mail;
  mail.text_body = std::string(MailMessage::longest_body + 1, 'x');
  EXPECT_THAT(problem_of_sending(mail, {"127.0.0.1", 1}), HasSubstr("too long"));
  mail = plain_mail;
  for (std::size_t i = 0; i < MailMessage::most_recipients; ++i) mail.recipient += ",bob@example.org";
  EXPECT_THAT(problem_of_sending(mail, {"127.0.0.1", 1}), HasSubstr("too many recipients"));
  mail.sender = "ann@example.com, bob@example.org";
  EXPECT_THAT(problem_of_sending(mail, {"127.0.0.1", 1}), HasSubstr("more than one sender"));
}

TEST(Refusals, CarryTheServersReply) {
  const std::string steps[][2] = {{"connect", "554 5.7.1 not you"},
                                  {"MAIL", "552 5.2.2 full"},
                                  {"RCPT", "550 5.1.1 no such user"},
                                  {"DATA", "451 4.3.0 later"},
                                  {".", "554-5.6.0 no\r\n554 spam"}};
  for (const auto& [step, reply] : steps) {
    SmtpSink::Behaviour behaviour;
    behaviour.replies[step] = reply;
    const SmtpSink sink(behaviour);
    const std::string problem = problem_of_sending(plain_mail, at(sink));
    const std::string told = step == "." ? "554-5.6.0 no 554 spam" : reply;
    EXPECT_EQ(problem, reply.substr(0, 3) + " the server refused it: " + told);
    EXPECT_THAT(sink.mails(), IsEmpty());
  }
}

TEST(Refusals, OfOneRecipientKeepTheMailFromAll) {
  SmtpSink::Behaviour behaviour;
  behaviour.replies["RCPT TO:<eve@"] = "550 \x1B[2J no \xFF eve";
  const SmtpSink sink(behaviour);
  Mail mail = plain_mail;
  mail.recipient += ", eve@example.net, carol@example.net";
  EXPECT_EQ(problem_of_sending(mail, at(sink)), "550 the server refused it: 550 \\x1b[2J no \\xff eve");
  EXPECT_THAT(sink.mails(), IsEmpty());
}

TEST(Connections, ThatFailAreTold) {
  for (const char* step : {"connect", "EHLO", "MAIL", "DATA", "."}) {
    SmtpSink::Behaviour behaviour;
    behaviour.replies[step] = "";
    const SmtpSink sink(behaviour);
    EXPECT_THAT(problem_of_sending(plain_mail, at(sink)), HasSubstr("no mail could be sent to this server: "))
        << step;
  }
  std::uint16_t closed = 0;
  closed = SmtpSink().port();
  EXPECT_THAT(problem_of_sending(plain_mail, {"127.0.0.1", closed}), HasSubstr("connect"));
  EXPECT_THAT(problem_of_sending(plain_mail, {"127.0.0.1", 0}), HasSubstr("port"));
  test::FakeServices lost;
  lost.lookup.find_address = [](std::string_view) -> std::string { throw Error(7, "no address"); };
  EXPECT_EQ(problem_of_sending(plain_mail, {"mail.example", 25}, lost), "7 no address");
}

TEST(Connections, GoWhereTheNameIsFound) {
  const SmtpSink sink;
  test::FakeServices found;
  found.lookup.find_address = [](std::string_view host) { return host == "mail.example" ? "127.0.0.1" : ""; };
  EXPECT_EQ(problem_of_sending(plain_mail, {"mail.example", sink.port()}, found), "");
  EXPECT_EQ(sink.mails().size(), 1u);
}

TEST(Connections, AreEncryptedWhereTheServerOffersIt) {
  SmtpSink::Behaviour behaviour;
  behaviour.offers_tls = true;
  const SmtpSink sink(behaviour);
  EXPECT_EQ(problem_of_sending(plain_mail, at(sink)), "");
  ASSERT_EQ(sink.mails().size(), 1u);
  EXPECT_TRUE(sink.mails()[0].encrypted);
  EXPECT_THAT(sink.mails()[0].data, HasSubstr("Hi Bob"));

  behaviour.replies["STARTTLS"] = "454 not now";
  const SmtpSink reluctant(behaviour);
  EXPECT_EQ(problem_of_sending(plain_mail, at(reluctant)), "");
  ASSERT_EQ(reluctant.mails().size(), 1u);
  EXPECT_FALSE(reluctant.mails()[0].encrypted);
}

TEST(Waiting, ServesTheEventLoopAndIsBounded) {
  SmtpSink::Behaviour behaviour;
  behaviour.delay = 20ms;
  const SmtpSink slow(behaviour);
  test::FakeServices console;
  EXPECT_EQ(problem_of_sending(plain_mail, at(slow), console), "");
  EXPECT_GT(console.waits, 3);

  for (const char* step : {"connect", "."}) {
    SmtpSink::Behaviour silent;
    silent.replies[step] = SmtpSink::silence;
    const SmtpSink sink(silent);
    EXPECT_THAT(problem_of_sending(plain_mail, at(sink), console, {.connect = 1s, .reply = 1s, .total = 1s}),
                HasSubstr("no mail could be sent"))
        << step;
  }
  // The mail is in good hands, whatever the server does about the farewell.
  SmtpSink::Behaviour rude;
  rude.replies["QUIT"] = SmtpSink::silence;
  const SmtpSink sink(rude);
  EXPECT_EQ(problem_of_sending(plain_mail, at(sink)), "");
}

TEST(Waiting, EndsWhereItIsCancelledOrTheEventLoopEnds) {
  SmtpSink::Behaviour silent;
  silent.replies["DATA"] = SmtpSink::silence;
  const SmtpSink sink(silent);
  test::FakeServices console;
  const std::shared_ptr<MailMessage> message = make(console);
  console.on_wait = [&] { message->cancel(); };
  EXPECT_THROW(message->send(plain_mail, at(sink)), Error);
  console.on_wait = [] { throw Error(91, "the console is being stopped"); };
  EXPECT_EQ(problem_of_sending(plain_mail, at(sink), console), "91 the console is being stopped");
}

}  // namespace
}  // namespace zrl::mail
