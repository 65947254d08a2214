#include <fstream>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/error.h"
#include "host/web/loss_question.h"
#include "host/web/reporter.h"
#include "host/web/turns.h"
#include "support/installed_console.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

// The parts of a session's console, each by itself.
namespace zrl::test {

namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Type = web::BrowserMessage::Type;
using Kind = ActivityRecord::Kind;

class TestPage : public Page {
 public:
  explicit TestPage(Console& console) : Page(console, "page", "A page") {}

  Timer timer{*this, "timer", 1, false};

 private:
  void load() override {}
};

class TestDialog : public Form {
 public:
  explicit TestDialog(Console& console) : Form(console, "dialog", "A dialog") {}

  void close() override {
    Form::close();
    if (on_close) on_close();
  }
  std::function<void()> on_close;
};

// Notes what it is told: "text" of messages, calls by their names.
class NotingOutput : public web::SessionOutput {
 public:
  void send(std::uint64_t, std::string message) override { messages.push_back(std::move(message)); }
  void violated(std::uint64_t) override { calls.emplace_back("violated"); }
  void person_acted() override { calls.emplace_back("acted"); }
  void action_began() override { calls.emplace_back("began"); }
  void action_ended() override { calls.emplace_back("ended"); }
  void progress(std::string text, std::uint64_t, std::uint64_t) override { calls.push_back(std::move(text)); }
  void language_is(std::string) override {}

  std::vector<std::string> messages;
  std::vector<std::string> calls;
};

struct SessionParts : ::testing::Test {
  SessionParts() { host.modeless = true; }

  std::shared_ptr<TestDialog> show_dialog(bool modal = true) {
    auto dialog = std::make_shared<TestDialog>(console);
    console.show(dialog);
    forms.show_dialog(dialog, modal);
    return dialog;
  }
  std::shared_ptr<TestPage> show_page() {
    auto page = std::make_shared<TestPage>(console);
    forms.show_page(page);
    return page;
  }

  TemporaryFolder folder;
  RecordingHost host;
  Console console{folder.path(), host};
  web::FormStack forms;
  NotingOutput output;
};

using FormStackTest = SessionParts;

TEST_F(FormStackTest, OpenDialogsNeverShareAName) {
  show_page();
  const auto first = show_dialog();
  show_dialog();
  EXPECT_TRUE(forms.find("dialog#2"));
  EXPECT_FALSE(forms.find("dialog#3"));
  first->close();
  EXPECT_THAT(forms.drop_closed(), IsEmpty());  // the browser has not seen it
  show_dialog();
  show_dialog();
  EXPECT_TRUE(forms.find("dialog"));
  EXPECT_TRUE(forms.find("dialog#3"));
  EXPECT_EQ(forms.forms().size(), 4u);
}

TEST_F(FormStackTest, AModalDialogCoversWhatIsBelowIt) {
  show_page();
  const auto covered = [this](std::string_view id) { return forms.is_covered(*forms.find(id)); };
  show_dialog(false);
  EXPECT_FALSE(covered("page"));
  show_dialog(true);
  show_dialog(false);
  EXPECT_TRUE(covered("page"));
  EXPECT_TRUE(covered("dialog"));
  EXPECT_FALSE(covered("dialog#2"));
  EXPECT_FALSE(covered("dialog#3"));
}

TEST_F(FormStackTest, AClosedDialogLivesUntilNoHandlerRuns) {
  show_page();
  std::weak_ptr<TestDialog> dialog = show_dialog();
  forms.find("dialog")->announced = true;
  dialog.lock()->close();
  EXPECT_THAT(forms.drop_closed(), SizeIs(1));
  (void)console.dialogs();
  EXPECT_FALSE(dialog.expired());
  forms.forget_closed();
  EXPECT_TRUE(dialog.expired());
}

TEST_F(FormStackTest, ADialogMayTakeOthersAlongWhenAllAreClosed) {
  show_page();
  std::vector<std::shared_ptr<TestDialog>> dialogs;
  for (int i = 0; i < 4; ++i) dialogs.push_back(show_dialog());
  dialogs[3]->on_close = [&] {
    dialogs[2]->close();
    dialogs[1]->close();
    forms.drop_closed();
  };
  forms.close_dialogs();
  for (const auto& dialog : dialogs) EXPECT_FALSE(dialog->is_open());
  forms.drop_closed();
  EXPECT_EQ(forms.forms().size(), 1u);
}

struct TurnsTest : SessionParts, web::TurnHandler {
  void arrived(const web::Incoming& item) override {
    done.push_back(item.text);
    std::this_thread::sleep_for(2ms);  // longer than the timer's interval: it is due again
    if (on_arrived) on_arrived();
  }
  void handle(const web::BrowserMessage& message) override {
    done.push_back(message.text);
    if (on_handle) on_handle(message);
  }
  void tick(Timer&) override { done.emplace_back("tick"); }

  void arrive(std::string text) { inbox.push({web::Incoming::Kind::message, 1, std::move(text)}); }
  bool wait(Type type, std::string form, std::string text) {
    web::BrowserMessage message;
    message.type = type;
    message.form = std::move(form);
    message.text = std::move(text);
    return turns.wait(std::move(message));
  }
  // The loop at the top, until all has had its turn.
  void run() {
    arrive("last");
    on_arrived = [this] {
      if (done.back() == "last") turns.end(false);
    };
    turns.run();
    on_arrived = nullptr;
  }

  web::Inbox inbox{[] {}};
  web::Turns turns{inbox, forms, output, *this};
  std::vector<std::string> done;
  std::function<void()> on_arrived;
  std::function<void(const web::BrowserMessage&)> on_handle;
};

TEST_F(TurnsTest, WithinAHandlerWhatBelongsToTheNextPageWaits) {
  show_page();
  show_dialog();
  wait(Type::event, "page", "first");
  wait(Type::captions, "", "captions");
  wait(Type::event, "page", "second");
  wait(Type::open, "", "open");
  wait(Type::event, "page", "for the next page");
  wait(Type::event, "dialog", "for the dialog");
  turns.serve_pending();
  EXPECT_THAT(done, ElementsAre("first", "second", "for the dialog"));
  done.clear();
  run();
  EXPECT_THAT(done, ElementsAre("captions", "open", "for the next page", "last"));
}

TEST_F(TurnsTest, AnOpenBoxHoldsBackAllButArrivals) {
  show_page()->timer.set_enabled(true);
  wait(Type::event, "page", "waited");
  arrive("answer");
  std::optional<BoxReply> reply;
  on_arrived = [&] { reply = BoxReply::ok; };
  std::this_thread::sleep_for(3ms);
  turns.serve_until_answered(reply);
  EXPECT_THAT(done, ElementsAre("answer"));
}

TEST_F(TurnsTest, TimersAndArrivalsAlternate) {
  show_page()->timer.set_enabled(true);
  for (int i = 0; i < 5; ++i) arrive("message");
  (void)forms.next_tick(web::Turns::Clock::now());
  std::this_thread::sleep_for(2ms);
  run();
  std::vector<std::string> expected;
  for (int i = 0; i < 5; ++i) expected.insert(expected.end(), {"tick", "message"});
  expected.insert(expected.end(), {"tick", "last"});
  EXPECT_EQ(done, expected);
}

TEST_F(TurnsTest, OnlySoMuchWaits) {
  for (std::size_t i = 0; i < web::Turns::most_waiting; ++i)
    EXPECT_TRUE(wait(Type::event, "page", "few bytes"));
  EXPECT_FALSE(wait(Type::event, "page", ""));
  turns.forget_waiting();
  EXPECT_TRUE(wait(Type::event, "page", std::string(web::Turns::most_waiting_bytes, 'x')));
  EXPECT_FALSE(wait(Type::event, "page", ""));
  turns.serve_pending();
  EXPECT_TRUE(wait(Type::event, "page", ""));
}

TEST_F(TurnsTest, TheThreadIsBusyWhileAHandlerRunsAndDoesNotWait) {
  {
    const web::Turns::Action outer(turns);
    const web::Turns::Action inner(turns);
    EXPECT_THAT(output.calls, ElementsAre("began"));
    const web::Turns::Pause pause(turns);
    EXPECT_THAT(output.calls, ElementsAre("began", "ended"));
    {
      const web::Turns::Action in_the_dialog(turns);
    }
    EXPECT_THAT(output.calls, ElementsAre("began", "ended", "began", "ended"));
  }
  EXPECT_THAT(output.calls, ElementsAre("began", "ended", "began", "ended", "began", "ended"));
}

TEST_F(TurnsTest, TheEndFreesWhoWaitsAndStoppingEndsTheAction) {
  const auto dialog = show_dialog();
  turns.end(false);
  turns.serve_until_closed(*dialog);
  turns.serve_until_answered({});
  turns.serve_until(web::Turns::Clock::now() + 1h);
  wait(Type::event, "page", "still runs");
  turns.serve_pending();
  EXPECT_THAT(done, ElementsAre("still runs"));
  turns.end(true);
  turns.end(false);
  EXPECT_THROW(turns.serve_pending(), Error);
  EXPECT_THROW(turns.serve_until(web::Turns::Clock::now()), Error);
}

struct ReporterTest : SessionParts {
  ReporterTest() {
    reporter.watch(console);
    reporter.connected(1);
  }
  void write(int times) {
    for (int i = 0; i < times; ++i) console.activity().succeeded(Kind::sql, "written", 0);
  }
  std::size_t audited() const {
    std::ifstream log(audit_file);
    return static_cast<std::size_t>(std::count(std::istreambuf_iterator<char>(log), {}, '\n'));
  }

  std::filesystem::path audit_file = folder.path() / "audit.log";
  web::Reporter reporter{output, forms, std::make_shared<web::AuditFile>(audit_file), "admin"};
};

TEST_F(ReporterTest, EachReportHoldsWhatIsNew) {
  write(3);
  reporter.action();
  ASSERT_EQ(output.messages.size(), 1u);
  EXPECT_THAT(output.messages[0], HasSubstr(R"("first":0,"total":3,"failed":0)"));
  reporter.action();
  EXPECT_EQ(output.messages.size(), 1u);
  console.activity().failed(Kind::sql, "tried", "in error", 0, true);
  reporter.action();
  EXPECT_THAT(output.messages.back(), HasSubstr(R"("first":3,"total":4,"failed":1)"));
  EXPECT_EQ(audited(), 4u);

  Console next(folder.path(), host);
  reporter.watch(next);
  next.activity().succeeded(Kind::sql, "anew", 0);
  reporter.action();
  EXPECT_THAT(output.messages.back(), HasSubstr(R"("first":0,"total":1,"failed":0)"));
  EXPECT_EQ(audited(), 5u);
}

TEST_F(ReporterTest, TheAuditLogOfALongActionDoesNotFallFarBehind) {
  write(1000);
  reporter.meanwhile();
  EXPECT_EQ(audited(), 0u);
  write(1);
  reporter.meanwhile();
  EXPECT_EQ(audited(), 1001u);
  reporter.action();
  EXPECT_EQ(audited(), 1001u);
}

TEST_F(ReporterTest, ProgressIsToldNowAndThenAndAtTheEnd) {
  reporter.progress({"first", 1, 9});
  reporter.progress({"too soon", 2, 9});
  reporter.progress({"last", 9, 9});
  EXPECT_THAT(output.calls, ElementsAre("first", "last"));
}

TEST_F(ReporterTest, AConnectionMayBreakTheRulesNineteenTimes) {
  const auto break_rules = [this](int times) {
    for (int i = 0; i < times; ++i) reporter.malformed({"nonsense", {}});
  };
  break_rules(19);
  reporter.connected(2);
  break_rules(19);
  EXPECT_THAT(output.calls, IsEmpty());
  break_rules(1);
  EXPECT_THAT(output.calls, ElementsAre("violated"));
}

TEST_F(ReporterTest, AFormIsToldWholeOnceAConnection) {
  show_page();
  reporter.forms();
  reporter.forms();
  ASSERT_EQ(output.messages.size(), 1u);
  EXPECT_THAT(output.messages[0], HasSubstr(R"("type":"form","form":"page")"));
  reporter.event_began(7);
  reporter.event_began(5);
  dynamic_cast<TestPage&>(*forms.page()).timer.set_interval(5);
  forms.page()->set_caption("Another");
  reporter.forms();
  EXPECT_THAT(output.messages.back(), HasSubstr(R"("ack":7)"));
  EXPECT_THAT(output.messages.back(), HasSubstr(R"("caption":"Another")"));
  reporter.connected(2);
  reporter.forms();
  EXPECT_THAT(output.messages.back(), HasSubstr(R"("type":"form")"));
  reporter.all_gone();
  EXPECT_THAT(output.messages.back(), HasSubstr(R"("type":"closed","form":"page")"));
  EXPECT_THAT(forms.forms(), IsEmpty());
}

TEST(LossQuestions, NameTheNumberInBothLanguages) {
  InstalledConsole installed;
  class LosingPage : public Page {
   public:
    explicit LosingPage(Console& console) : Page(console, "losing", "Losing") {}
    Button clear{*this, "clear", "Clear List"};
    ListBox rows{*this, "rows"};
    Label label{*this, "label", "Black list", rows};

   private:
    void load() override {}
  };
  LosingPage page(installed.console);
  std::optional<std::uint64_t> count;
  const auto asked = [&](const Loss& loss) -> std::string {
    page.clear.set_destroys(loss, [&] { return count; });
    const auto box = web::question_before_click(installed.console, page.clear);
    return box ? box->text : "";
  };
  count = 50'000;
  EXPECT_EQ(asked(loss::log_rows), "Delete 50,000 rows of the logs? This cannot be taken back.");
  EXPECT_EQ(asked(loss::asked_by_form), "");
  count = 0;
  EXPECT_EQ(asked(loss::log_rows), "");
  count = {};
  EXPECT_EQ(asked(loss::log_rows), "Delete these rows of the logs? This cannot be taken back.");
  page.clear.set_destroys(loss::log_rows,
                          []() -> std::optional<std::uint64_t> { throw std::runtime_error("no"); });
  EXPECT_TRUE(web::question_before_click(installed.console, page.clear));
  installed.console.localisation().translate("", "german");
  count = 1'234'567;
  EXPECT_EQ(asked(loss::log_rows),
            "1.234.567 Zeilen der Protokolle löschen? Das lässt sich nicht rückgängig machen.");
  EXPECT_EQ(web::question_before_removal(installed.console, page.rows, 2248)->text,
            "2.248 Einträge aus „Black list“ entfernen?");
}

}  // namespace

}  // namespace zrl::test
