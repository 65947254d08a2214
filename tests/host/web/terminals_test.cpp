#include "host/web/terminals.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "host/web/handler_page.h"
#include "host/web/session_driver.h"
#include "support/temporary_folder.h"

// Programs on terminals, with scripts as programs.
namespace zrl::test {

namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;

std::string from_base64(std::string_view text) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  int held = 0;
  for (const char character : text) {
    if (character == '=') break;
    bits = bits << 6 | static_cast<unsigned>(digits.find(character));
    if ((held += 6) < 8) continue;
    held -= 8;
    bytes += static_cast<char>(bits >> held & 0xff);
  }
  return bytes;
}

bool becomes(const std::function<bool()>& condition) {
  for (int i = 0; i < 400; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(25ms);
  }
  return false;
}

// A browser that draws what it is told, if it is to.
class TerminalsTest : public ::testing::Test {
 protected:
  struct Shown {
    std::string title;
    std::string output;
    json::object end;
    bool gone = false;
  };

  void SetUp() override { terminals_->connected(1); }

  void receive(std::uint64_t connection, const std::string& text) {
    const json::object message = json::parse(text).as_object();
    const std::scoped_lock lock(mutex_);
    if (connection != connection_) return;
    Shown& shown = shown_[message.at("id").to_number<std::uint64_t>()];
    const std::string_view type = message.at("type").as_string();
    if (type == "terminal") shown.title = message.at("title").as_string();
    if (type == "output") shown.output += from_base64(message.at("data").as_string());
    if (type == "ended") shown.end = message;
    if (type == "gone") shown.gone = true;
    received_ += text.size();
  }

  // Makes the script a program and starts it.
  void start(const std::string& script, std::vector<std::string> operands = {}, std::string where = {}) {
    const auto file = folder_.path() / ("program" + std::to_string(++scripts_));
    std::ofstream(file) << "#!/bin/sh\n" << script << "\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    terminals_->start({file.string() + ".exe", std::move(operands), std::move(where)});
  }
  Shown shown(std::uint64_t id) {
    const std::scoped_lock lock(mutex_);
    return shown_[id];
  }
  bool has_ended(std::uint64_t id) { return !shown(id).end.empty(); }
  std::size_t received() {
    const std::scoped_lock lock(mutex_);
    return received_;
  }
  void connect_again() {
    {
      const std::scoped_lock lock(mutex_);
      shown_.clear();
      ++connection_;
    }
    terminals_->connected(connection_);
  }
  // The process whose number the program wrote into the file.
  bool is_running(const std::string& file) {
    pid_t process = 0;
    std::ifstream(folder_.path() / file) >> process;
    std::string number, name, state;
    std::ifstream("/proc/" + std::to_string(process) + "/stat") >> number >> name >> state;
    return !state.empty() && state != "Z";
  }

  TemporaryFolder folder_;
  std::mutex mutex_;
  std::map<std::uint64_t, Shown> shown_;
  std::uint64_t connection_ = 1;
  std::size_t received_ = 0;
  int scripts_ = 0;
  std::vector<std::string> notes_;
  web::TerminalPlaces places_;
  std::unique_ptr<web::Terminals> terminals_ = std::make_unique<web::Terminals>(
      folder_.path(), places_,
      [this](std::uint64_t connection, const std::string& text) { receive(connection, text); },
      [this](std::string_view text) { notes_.emplace_back(text); });
};

TEST_F(TerminalsTest, AProgramGetsATerminalAndNothingOfOurs) {
  ::setenv("ZRL_TEST_SECRET", "secret", 1);
  start(
      "tty -s && echo on a terminal; stty size; pwd; env; printf '<%s>' \"$@\"; echo; ls -1 /proc/$$/fd; "
      "exit 3",
      {"a b;c", "$(touch bad)"});
  ASSERT_TRUE(becomes([&] { return has_ended(1); }));
  const Shown told = shown(1);
  EXPECT_THAT(told.title, HasSubstr("program1.exe a b;c $(touch bad)"));
  EXPECT_THAT(told.output, HasSubstr("on a terminal\r\n24 80\r\n" + folder_.path().string() + "\r\n"));
  EXPECT_THAT(told.output, HasSubstr("TERM=xterm-256color"));
  EXPECT_THAT(told.output, HasSubstr("<a b;c><$(touch bad)>\r\n"));
  EXPECT_THAT(told.output, Not(HasSubstr("ZRL_TEST_SECRET")));
  EXPECT_THAT(told.output, Not(HasSubstr("HOME=")));
  EXPECT_THAT(told.output, ::testing::MatchesRegex("(.|\r|\n)*\r\n0\r\n1\r\n10\r\n2\r\n"));  // 10: the script
  EXPECT_EQ(told.end.at("status"), 3);
  ::unsetenv("ZRL_TEST_SECRET");
}

TEST_F(TerminalsTest, TypingAndResizingReachTheProgram) {
  start("stty -echo; echo ready; while read -r line; do stty size; echo \"got $line\"; done");
  ASSERT_TRUE(becomes([&] { return shown(1).output == "ready\r\n"; }));
  terminals_->resize(1, 132, 43);
  EXPECT_TRUE(terminals_->type(1, "h\u00e9llo\r"));
  ASSERT_TRUE(becomes([&] { return shown(1).output.find("got h\u00e9llo") != std::string::npos; }));
  EXPECT_THAT(shown(1).output, HasSubstr("43 132"));
  terminals_->type(1, "\x04");  // the end of the input
  ASSERT_TRUE(becomes([&] { return has_ended(1); }));
  EXPECT_EQ(shown(1).end.at("status"), 0);
  // What comes after the end changes nothing.
  terminals_->type(1, "more");
  terminals_->resize(1, 10, 10);
  terminals_->taken(1, 1);
  terminals_->close(1);
  terminals_->close(77);
  EXPECT_TRUE(shown(1).gone);
}

TEST_F(TerminalsTest, ProgramsGainNothingAndAreLimited) {
  start(
      "umask; ulimit -c; ulimit -n; while read -r name value; do case $name in NoNewPrivs:) echo nnp "
      "$value;; esac; "
      "done < /proc/self/status");
  ASSERT_TRUE(becomes([&] { return has_ended(1); }));
  EXPECT_EQ(shown(1).output, "0077\r\n0\r\n256\r\nnnp 1\r\n");
}

// Whoever types into it must find no way from it to a shell, whichever telnet it is.
TEST_F(TerminalsTest, TelnetIsAlone) {
  const auto file = folder_.path() / "telnet";
  std::ofstream(file)
      << "#!/bin/sh\necho \"<$*>\"\ncase $2 in\nfork) (echo forked) ;;\nexec) exec /bin/echo executed ;;\n"
         "write) echo written > written ;;\nread) read -r line; echo \"got $line\" ;;\nesac\n";
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  std::uint64_t id = 0;
  for (const char* what : {"fork", "exec", "write"}) {
    terminals_->start({file.string() + ".exe", {what, "25"}, ""});
    ASSERT_TRUE(becomes([&, id = ++id] { return has_ended(id); })) << what;
    EXPECT_THAT(shown(id).output, ::testing::StartsWith("<-E " + std::string(what) + " 25>\r\n"));
    EXPECT_THAT(shown(id).output, Not(HasSubstr("forked")));
    EXPECT_THAT(shown(id).output, Not(HasSubstr("executed")));
  }
  EXPECT_EQ(std::filesystem::file_size(folder_.path() / "written"), 0u);
  terminals_->start({file.string() + ".exe", {"read", "25"}, ""});
  ASSERT_TRUE(becomes([&, id = ++id] { return shown(id).output.find(">") != std::string::npos; }));
  terminals_->type(id, "one\x1d line\r");
  ASSERT_TRUE(becomes([&] { return has_ended(id); }));
  EXPECT_THAT(shown(id).output, HasSubstr("got one line\r\n"));
  EXPECT_THAT(notes_, ::testing::ElementsAre(HasSubstr("telnet.exe read 25: one line")));
}

TEST_F(TerminalsTest, WhatIsTypedIsNotedByLines) {
  start("stty raw -echo; echo ready; exec sleep 60");
  ASSERT_TRUE(becomes([&] { return !shown(1).output.empty(); }));
  terminals_->type(1, "EHLO ");
  terminals_->type(1, "here\r\nMAIL\x7f\r");
  terminals_->type(1, std::string(5000, 'x'));
  ASSERT_EQ(notes_.size(), 3u);
  EXPECT_THAT(notes_[0], ::testing::EndsWith("program1.exe: EHLO here"));
  EXPECT_THAT(notes_[1], ::testing::EndsWith(": MAIL\x7f"));
  EXPECT_THAT(notes_[2], ::testing::EndsWith(": " + std::string(4096, 'x')));
  // An unfinished line as well.
  terminals_.reset();
  EXPECT_THAT(notes_.back(), ::testing::EndsWith(": " + std::string(904, 'x')));
}

TEST_F(TerminalsTest, EndlessOutputWaitsForTheBrowser) {
  start("exec yes 0123456789");
  start("echo other; read -r line; echo \"$line\"");
  ASSERT_TRUE(becomes([&] { return shown(1).output.size() >= web::Terminals::window; }));
  std::this_thread::sleep_for(200ms);
  EXPECT_EQ(shown(1).output.size(), web::Terminals::window);
  // Others go on meanwhile, and so does this one when its browser has drawn.
  terminals_->type(2, "still here\r");
  EXPECT_TRUE(becomes([&] { return has_ended(2); }));
  terminals_->taken(1, 100'000);
  ASSERT_TRUE(becomes([&] { return shown(1).output.size() == web::Terminals::window + 100'000; }));
  terminals_->taken(1, ~std::uint64_t{0});  // no more than there was
  ASSERT_TRUE(becomes([&] { return shown(1).output.size() == 2 * web::Terminals::window + 100'000; }));
  // A browser that comes back sees the last lines, from the beginning of one.
  connect_again();
  ASSERT_TRUE(becomes([&] { return shown(1).output.size() >= web::Terminals::window; }));
  EXPECT_EQ(shown(1).output.substr(0, 14), "0123456789\r\n01");
  EXPECT_THAT(shown(2).output, HasSubstr("other"));
  EXPECT_EQ(shown(2).end.at("status"), 0);
  const auto before = std::chrono::steady_clock::now();
  terminals_->close(1);
  terminals_.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - before, 900ms);  // it was asked, not killed
}

TEST_F(TerminalsTest, AProgramThatDoesNotReadBoundsWhatIsTyped) {
  start("stty raw -echo; echo ready; exec sleep 60");
  ASSERT_TRUE(becomes([&] { return !shown(1).output.empty(); }));
  const std::string text(300'000, 'x');
  int taken = 0;
  while (taken < 20 && terminals_->type(1, text)) ++taken;
  EXPECT_GE(taken, 3);
  EXPECT_LE(taken, 4);
}

TEST_F(TerminalsTest, ClosingEndsTheProgramAndWhatItStarted) {
  // Neither it nor its child heeds the hang-up.
  start("trap '' HUP; sleep 600 & echo $! > child; echo $$ > self; wait");
  ASSERT_TRUE(becomes([&] { return is_running("self"); }));
  terminals_->close(1);
  EXPECT_TRUE(shown(1).gone);
  EXPECT_TRUE(becomes([&] { return !is_running("self") && !is_running("child"); }));
  // The same at the end of the session, and of a program that ended leaving a child behind.
  start("sleep 600 & echo $! > left");
  ASSERT_TRUE(becomes([&] { return has_ended(2); }));
  EXPECT_TRUE(becomes([&] { return !is_running("left"); }));
  start("echo $$ > last; exec sleep 600");
  ASSERT_TRUE(becomes([&] { return is_running("last"); }));
  terminals_.reset();
  EXPECT_FALSE(is_running("last"));
}

TEST_F(TerminalsTest, ASignalIsToldAndTheLastWordsAreRead) {
  start("seq 1 2000; kill -9 $$");
  ASSERT_TRUE(becomes([&] { return has_ended(1); }));
  EXPECT_EQ(shown(1).end.at("signal"), 9);
  EXPECT_THAT(shown(1).output, HasSubstr("\r\n1999\r\n2000\r\n"));
}

TEST_F(TerminalsTest, OnlySoManyRunAndEndedOnesGiveWay) {
  EXPECT_THROW(terminals_->start({"no-such-program-here.exe", {}, ""}), Error);
  EXPECT_THROW(terminals_->start({"", {}, ""}), Error);
  EXPECT_THROW(start("true", {}, "\\no\\such\\folder"), Error);
  start("true");
  for (std::size_t i = 1; i < web::TerminalPlaces::most; ++i) start("sleep 60");
  ASSERT_TRUE(becomes([&] { return has_ended(1); }));
  start("sleep 60");
  EXPECT_TRUE(shown(1).gone);
  EXPECT_THROW(start("sleep 60"), Error);
}

TEST(SessionTerminals, ProgramsEndWithTheSessionEvenDuringAnAction) {
  SessionDriver session(test_pages());
  const auto program = session.folder() / "program";
  std::ofstream(program) << "#!/bin/sh\necho $$\nexec sleep 600\n";
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  session.show("handlers");
  session.event("handlers", "command", "text", {{"text", program.string()}});
  session.click("handlers", "program");
  const pid_t process = std::stoi(from_base64(session.receive("output").at("data").as_string()));
  session.until_done(session.click("handlers", "count"));
  session.click("handlers", "block");
  while (session.busy_changes % 2 == 0) std::this_thread::sleep_for(1ms);
  EXPECT_EQ(::kill(process, 0), 0);
  session.announce_end();
  EXPECT_TRUE(becomes([&] { return ::kill(process, 0) != 0; }));
  session.make_file("go");
}

TEST(SessionTerminals, APageStartsAProgramAndGoesOn) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.event("handlers", "command", "text", {{"text", "cat"}});
  session.until_done(session.click("handlers", "program"));
  session.connect();  // a reload brings the terminal back
  EXPECT_EQ(session.receive("terminal").at("title"), "cat.exe");
  session.send(json::object{{"type", "resize"}, {"id", 1}, {"columns", 100}, {"rows", 30}});
  session.send(json::object{{"type", "input"}, {"id", 1}, {"text", "ping\r"}});
  const json::object output = session.receive("output");
  EXPECT_EQ(output.at("position"), 0);
  EXPECT_THAT(from_base64(output.at("data").as_string()), HasSubstr("ping"));
  session.send(json::object{{"type", "taken"}, {"id", 1}, {"position", 5}});
  session.send(json::object{{"type", "end"}, {"id", 1}});
  session.receive("gone");
  // One that is not there is a step that failed, and no more.
  session.event("handlers", "command", "text", {{"text", "no-such-program-here"}});
  session.click("handlers", "program");
  const json::object failed = session.receive("activity");
  EXPECT_EQ(failed.at("failed"), 1);
  EXPECT_EQ(failed.at("entries").at(0).at("text"), "no-such-program-here.exe");
}

}  // namespace

}  // namespace zrl::test
