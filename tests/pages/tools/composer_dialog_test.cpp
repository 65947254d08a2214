#include "pages/tools/composer_dialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/locale/catalogue.h"
#include "components/locale/locale.h"
#include "support/installed_console.h"
#include "support/smtp_sink.h"

namespace zrl {
namespace {

using test::SmtpSink;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ComposerDialogTest : public testing::Test, public test::InstalledConsole {
 protected:
  ComposerDialog composer{console};

  void fill(const SmtpSink& sink) {
    composer.fill_form("ann@example.com", "bob@example.org", "Hello", "Hi Bob", "<p>Hi Bob</p>");
    composer.server.set_text("127.0.0.1");
    composer.port.set_text(std::to_string(sink.port()));
  }
};

TEST_F(ComposerDialogTest, SendsWhatItWasFilledWith) {
  const SmtpSink sink;
  set_string("forwardaddress", " 127.0.0.1");
  set_option("forwardport", sink.port());
  composer.fill_form("Ann <ann@example.com>", "", "Größe", "Hi\r\nBob", "<p>Hi Bob</p>");
  composer.load_forward();
  EXPECT_EQ(composer.server.text(), "127.0.0.1");
  EXPECT_EQ(composer.port.text(), std::to_string(sink.port()));
  EXPECT_EQ(composer.database, nullptr);

  composer.recipient.user_type(" bob@example.org; carol@example.net ");
  composer.send.user_click();
  EXPECT_EQ(composer.status.caption(), "The server has taken the mail over");
  EXPECT_THAT(activity(),
              ElementsAre("send bob@example.org; carol@example.net via 127.0.0.1:" + composer.port.text()));
  ASSERT_EQ(sink.mails().size(), 1u);
  EXPECT_EQ(sink.mails()[0].sender, "ann@example.com");
  EXPECT_THAT(sink.mails()[0].recipients, ElementsAre("bob@example.org", "carol@example.net"));
  const Mail mail = console.components().create<MailMessage>()->parse(sink.mails()[0].data);
  EXPECT_EQ(mail.subject, "Größe");
  EXPECT_EQ(mail.text_body, "Hi\nBob");
  EXPECT_EQ(mail.html_body, "<p>Hi Bob</p>");
}

TEST_F(ComposerDialogTest, KeepsServerAndPortThatTheOptionsDoNotTell) {
  composer.server.set_text("mail.example");
  composer.load_forward();
  EXPECT_EQ(composer.server.text(), "mail.example");
  EXPECT_EQ(composer.port.text(), "25");
  set_string("forwardport", "none");
  composer.load_forward();
  EXPECT_EQ(composer.port.text(), "25");
}

TEST_F(ComposerDialogTest, TellsWhatTheServerSaid) {
  SmtpSink::Behaviour behaviour;
  behaviour.replies["RCPT"] = "550 5.1.1 nobody here";
  const SmtpSink sink(behaviour);
  fill(sink);
  composer.send.user_click();
  EXPECT_THAT(composer.status.caption(), StartsWith("The mail was not sent: "));
  EXPECT_THAT(composer.status.caption(), HasSubstr("550 5.1.1 nobody here"));
  EXPECT_THAT(activity(), ElementsAre("failed: send bob@example.org via 127.0.0.1:" + composer.port.text()));
  EXPECT_TRUE(composer.send.enabled());
}

TEST_F(ComposerDialogTest, AsksForWhatIsMissingOrWrong) {
  const SmtpSink sink;
  const struct {
    TextField ComposerDialog::* field;
    std::string text;
    std::string status;
  } cases[] = {
      {&ComposerDialog::sender, " ", "The sender is missing"},
      {&ComposerDialog::sender, "ann", "The sender is no mail address: ann"},
      {&ComposerDialog::sender, "a@b.c, d@e.f", "There can be one sender only"},
      {&ComposerDialog::recipient, ";", "The recipient is missing"},
      {&ComposerDialog::recipient, "a@b.c, x y", "The recipient is no mail address: x y"},
      {&ComposerDialog::server, "", "The server is missing"},
      {&ComposerDialog::server, "a b", "The server is neither a host name nor an IP number"},
      {&ComposerDialog::port, "0", "The port is no number from 1 to 65535"},
      {&ComposerDialog::port, "65536", "The port is no number from 1 to 65535"},
      {&ComposerDialog::port, "smtp", "The port is no number from 1 to 65535"},
  };
  const auto german = locale::Catalogue::parse(locale::built_in_catalogue("german"));
  for (const auto& wrong : cases) {
    fill(sink);
    (composer.*wrong.field).user_type(wrong.text);
    composer.send.user_click();
    EXPECT_EQ(composer.status.caption(), wrong.status);
    EXPECT_TRUE(german.has(composer.status.caption()));
    EXPECT_TRUE(composer.send.enabled());
  }
  EXPECT_THAT(sink.commands(), IsEmpty());
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(ComposerDialogTest, CanBeClosedWhileItSends) {
  SmtpSink::Behaviour behaviour;
  behaviour.replies["DATA"] = SmtpSink::silence;
  const SmtpSink sink(behaviour);
  const auto shown = std::make_shared<ComposerDialog>(console);
  shown->set_open(true);
  shown->fill_form("ann@example.com", "bob@example.org", "", "", "");
  shown->server.set_text("127.0.0.1");
  shown->port.set_text(std::to_string(sink.port()));
  bool pressed = false;
  host.on_wait = [&] {
    if (sink.commands().empty() || std::exchange(pressed, true)) return;
    EXPECT_FALSE(shown->send.enabled());
    EXPECT_EQ(shown->status.caption(), "The mail is being sent...");
    shown->cancel.user_click();
  };
  shown->send.user_click();
  EXPECT_TRUE(pressed);
  EXPECT_FALSE(shown->is_open());
  EXPECT_EQ(shown->status.caption(), "The mail was not sent: the sending was stopped");
  EXPECT_EQ(activity().size(), 1u);
}

TEST_F(ComposerDialogTest, WithoutTheComponentOrTheDatabaseIsAFailedStep) {
  console.components().remove("CDO.Message");
  console.components().remove("dbfunctions.dba");
  composer.load_forward();
  EXPECT_EQ(composer.port.text(), "25");
  fill(SmtpSink());
  forget_activity();
  composer.send.user_click();
  EXPECT_THAT(composer.status.caption(), StartsWith("The mail was not sent: "));
  EXPECT_EQ(activity().size(), 1u);
}

}  // namespace
}  // namespace zrl
