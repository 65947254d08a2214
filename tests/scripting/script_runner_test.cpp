#include "scripting/script_runner.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/sample/scripts.h"
#include "scripting/script_table.h"
#include "support/installed_console.h"

namespace zrl {
namespace {

using test::returning;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ScriptRunnerTest : public testing::Test, public test::ScriptTable<test::InstalledConsole> {
 protected:
  ScriptRunnerTest() { create_table(); }

  // The sum of the position's scripts, freshly loaded.
  std::int32_t run(ScriptRunner& by, std::string_view position, std::string_view input = "") {
    by.load_into_engine(conn, position);
    return by.call_all(input, position);
  }
  // The log without its time stamps.
  std::vector<std::string> log() const {
    std::vector<std::string> lines = lines_of("Scripts.log");
    for (std::string& line : lines) {
      EXPECT_EQ(line.find(": "), 14u) << line;
      line.erase(0, line.find(": ") + 2);
    }
    return lines;
  }
  std::vector<std::string> problems(const ScriptRunner& of) const {
    std::vector<std::string> texts;
    for (const auto& problem : of.problems()) texts.push_back(problem.description());
    return texts;
  }

  ScriptRunner runner{console};
};

TEST_F(ScriptRunnerTest, AddsUpThePositionsScriptsByPriorityAndLogsThem) {
  put("second", "CONNECT", 20, 1, returning("second", "2 - seen(\"first\")"));
  put("first", "CONNECT", 10, 1, returning("first", "Len(input)"));
  put("elsewhere", "BODY", 5, 1, returning("elsewhere", "100"));
  put("seen", "NEVER", 30, 0, returning("seen", "0"));
  EXPECT_EQ(run(runner, "connect", "x"), 3);
  EXPECT_THAT(log(), ElementsAre("first.CONNECT = 1", "second.CONNECT = 2"));
  EXPECT_EQ(lines_of("Scripts.log").front().substr(0, 8), console.time_stamp().substr(0, 8));
  EXPECT_TRUE(runner.last_log_result());
  EXPECT_THAT(problems(runner), IsEmpty());
}

TEST_F(ScriptRunnerTest, SharedCodeIsLoadedEverywhereButRunAtItsOwnPositionOnly) {
  put("shared", "BODY", 1, 0, returning("shared", "40"));
  put("user", "CONNECT", 2, 1, returning("user", "shared(input) + 2"));
  put("not_loaded", "BODY", 3, 1, returning("not_loaded", "1"));
  EXPECT_EQ(run(runner, "CONNECT"), 42);
  EXPECT_THAT(log(), ElementsAre("user.CONNECT = 42"));
  EXPECT_EQ(run(runner, "BODY"), 41);
  runner.load_into_engine(conn, "CONNECT");
  EXPECT_TRUE(runner.call_vbs("not_loaded", "").is_empty);
}

TEST_F(ScriptRunnerTest, AnEmptyTableGivesNothing) {
  EXPECT_EQ(run(runner, "CONNECT"), 0);
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "Scripts.log"));
  EXPECT_TRUE(runner.call_vbs("anything", "").is_empty);
}

TEST_F(ScriptRunnerTest, AScriptThatFailsCountsAsTheOneBefore) {
  put("a_broken", "AV", 1, 1, "Function a_broken(input\r\n");
  put("b_seven", "AV", 2, 1, returning("b_seven", "\"7\""));
  put("c_raises", "AV", 3, 1, "Function c_raises(input)\r\n  c_raises = 1 / 0\r\nEnd Function");
  put("d_text", "AV", 4, 1, returning("d_text", "\"many\""));
  put("e_large", "AV", 5, 1, returning("e_large", "3000000000"));
  put("f_null", "AV", 6, 1, returning("f_null", "Null"));
  put("g_object", "AV", 7, 1, "Function g_object(input)\r\nSet g_object = New RegExp\r\nEnd Function");
  put("h_empty", "AV", 8, 1, "Function h_empty(input)\r\nEnd Function");
  put("i_rounds", "AV", 9, 1, returning("i_rounds", "2.5"));
  put("j_true", "AV", 10, 1, returning("j_true", "True"));
  EXPECT_EQ(run(runner, "AV"), 0 + 6 * 7 + 0 + 2 - 1);
  EXPECT_THAT(log(), ElementsAre("a_broken.AV = 0", "b_seven.AV = 7", "c_raises.AV = 7", "d_text.AV = 7",
                                 "e_large.AV = 7", "f_null.AV = 7", "g_object.AV = 7", "h_empty.AV = 0",
                                 "i_rounds.AV = 2", "j_true.AV = -1"));
  EXPECT_THAT(problems(runner), Contains(testing::StartsWith("c_raises(2, ")));
  EXPECT_THAT(problems(runner).front(), testing::StartsWith("a_broken(1, "));
  EXPECT_THAT(activity(), Contains("failed: AddCode a_broken"));
  EXPECT_THAT(activity(), Contains("failed: Run c_raises"));
  EXPECT_THAT(host.boxes, IsEmpty());
}

TEST_F(ScriptRunnerTest, ASumThatOverflowsIsLeftOut) {
  put("a", "AV", 1, 1, returning("a", "2147483647"));
  put("b", "AV", 2, 1, returning("b", "1"));
  put("c", "AV", 3, 1, returning("c", "-2"));
  EXPECT_EQ(run(runner, "AV"), 2147483645);
  EXPECT_THAT(log(), ElementsAre("a.AV = 2147483647", "b.AV = 1", "c.AV = -2"));
}

TEST_F(ScriptRunnerTest, CallsOneScriptAndLoadsAllWhenNoneWasLoaded) {
  put("twice", "NEVER", 1, 1, returning("twice", "input & input"));
  put("hidden", "BODY", 1, 99, returning("hidden", "twice(input) & \"!\""));
  EXPECT_EQ(runner.call_vbs("HIDDEN", "\xC3\xA4").text, "\xC3\xA4\xC3\xA4!");
  execute("DELETE FROM scriptengine");
  EXPECT_EQ(runner.call_vbs("twice", "a").text, "aa");  // loaded once, and kept
  runner.loaddb();
  EXPECT_TRUE(runner.call_vbs("twice", "a").is_empty);
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "Scripts.log"));
}

// What the row holds may be anybody's.
TEST_F(ScriptRunnerTest, StrangeRowsDoNoHarm) {
  put("a\nb: fake.AV = 9", "AV", 1, 1, "");
  const auto row = row_of("a\nb: fake.AV = 9");
  row->set_bytes("scriptcontent", "\x01\xD8\xFF");
  row->update();
  execute("INSERT INTO scriptengine (scriptname,svisible) VALUES ('bare',1)");
  EXPECT_EQ(run(runner, "AV"), 0);
  EXPECT_THAT(log(), ElementsAre("a b: fake.AV = 9.AV = 0"));
  EXPECT_EQ(run(runner, "A'V"), 0);  // a malformed statement loads nothing
  EXPECT_EQ(run(runner, ""), 0);
  EXPECT_THAT(log(), SizeIs(1));
  EXPECT_TRUE(runner.call_vbs("bare", "").is_empty);
}

TEST_F(ScriptRunnerTest, EndlessScriptsAreStopped) {
  put("endless", "AV", 1, 1, "Function endless(input)\nDo\nLoop\nEnd Function");
  put("four", "AV", 2, 1, returning("four", "4"));
  ScriptRunner patient(console, {.call_time = std::chrono::milliseconds(50)});
  EXPECT_EQ(run(patient, "AV"), 4);
  EXPECT_THAT(log(), ElementsAre("endless.AV = 0", "four.AV = 4"));
  EXPECT_THAT(problems(patient), ElementsAre(HasSubstr("endless(")));
}

TEST_F(ScriptRunnerTest, MissingDatabaseIsToldInABoxOfItsOwn) {
  console.settings().regwrite_string(console.settings().data_provider_path(), "nothing");
  runner.loaddb();
  ASSERT_THAT(host.boxes, SizeIs(1));
  EXPECT_EQ(host.boxes[0].title, "No Database Connection Possible (Script Engine COM Control)");
  EXPECT_EQ(host.boxes[0].style, BoxStyle::critical);
  EXPECT_THAT(host.boxes[0].text,
              testing::StartsWith("Connection to database could not be etablished: \r\n"));
}

// Loading only reads; nothing stays locked behind it.
TEST_F(ScriptRunnerTest, LeavesNoTransactionBehind) {
  put("a", "AV", 1, 1, returning("a", "1"));
  runner.loaddb();
  conn->begin_transaction();
  execute("DELETE FROM scriptengine");
  conn->commit();
  EXPECT_THAT(rows("scriptengine", "scriptname"), IsEmpty());
}

TEST_F(ScriptRunnerTest, BoxesGoToTheHostAndAreCounted) {
  put("ask", "AV", 1, 1, returning("ask", "MsgBox(input, 4 + 32, \"Title\")"));
  put("flood", "BODY", 1, 1,
      "Function flood(input)\nFor i = 1 To 1000: MsgBox String(6000, \"x\"): Next\nflood = 1\nEnd "
      "Function");
  EXPECT_EQ(run(runner, "AV", "Really?"), 6);
  host.reply = BoxReply::cancel;
  EXPECT_EQ(run(runner, "AV", "Really?"), 7);
  ASSERT_THAT(host.boxes, SizeIs(2));
  EXPECT_EQ(host.boxes[0].title, "Title");
  EXPECT_EQ(host.boxes[0].text, "Really?");
  EXPECT_EQ(host.boxes[0].style, BoxStyle::question);
  host.boxes.clear();
  EXPECT_EQ(run(runner, "BODY"), 1);
  EXPECT_THAT(host.boxes, SizeIs(ConsoleScriptHost::box_limit));
  EXPECT_LT(host.boxes[0].text.size(), 5000u);
}

TEST_F(ScriptRunnerTest, LinesOfWScriptGoIntoTheActivityAndTheResult) {
  put("prints", "AV", 1, 1,
      "Function prints(input)\nWScript.Echo WScript.ScriptName, input, "
      "WScript.Arguments.Count\nWScript.Sleep 1\n"
      "prints = 1\nEnd Function");
  put("flood", "BODY", 1, 1, "Function flood(input)\nFor i = 1 To 1000: WScript.Echo i: Next\nEnd Function");
  EXPECT_EQ(run(runner, "AV", "x"), 1);
  EXPECT_THAT(runner.echoed(), ElementsAre("prints x 0"));
  EXPECT_THAT(activity(), Contains("Echo prints x 0"));
  EXPECT_EQ(run(runner, "BODY"), 0);
  EXPECT_THAT(runner.echoed(), SizeIs(ConsoleScriptHost::line_limit));
}

TEST_F(ScriptRunnerTest, ScriptsReadFilesOfTheirFolderAlone) {
  std::filesystem::create_directories(folder.path() / "scripts/lib");
  std::ofstream(folder.path() / "scripts/lib/twice.vbs")
      << "Function Twice(x) : Twice = x * 2 : End Function";
  std::ofstream(folder.path() / "secret.txt") << "secret";
  std::filesystem::create_symlink(folder.path() / "secret.txt", folder.path() / "scripts/link.txt");
  std::ofstream(folder.path() / "scripts/large.txt") << std::string(FolderScriptFiles::largest + 1, 'x');
  put("reads", "AV", 1, 1, R"(Function reads(path)
  On Error Resume Next
  Set files = CreateObject("Scripting.FileSystemObject")
  ExecuteGlobal files.OpenTextFile(path).ReadAll
  reads = Err.Number
  If reads = 0 Then reads = Twice(21)
  If files.FileExists(path) Then reads = reads + 1000
End Function)");
  runner.load_into_engine(conn, "AV");
  EXPECT_EQ(runner.call_vbs("reads", "lib\\twice.vbs").number, 1042);
  EXPECT_EQ(runner.call_vbs("reads", "missing.vbs").number, 53);
  EXPECT_EQ(runner.call_vbs("reads", "lib").number, 53);
  EXPECT_EQ(runner.call_vbs("reads", "large.txt").number, 1007);
  for (const std::string& path :
       {std::string("../secret.txt"), std::string("link.txt"), std::string("/etc/passwd"),
        (folder.path() / "secret.txt").string(), std::string("lib/../../secret.txt")}) {
    EXPECT_EQ(runner.call_vbs("reads", path).number, 70) << path;
  }
}

TEST_F(ScriptRunnerTest, ScriptsAskForEntriesOfLists) {
  execute("INSERT INTO whitemail (entry) VALUES ('friend@example.com')");
  put("asks", "AV", 1, 1, R"(Function asks(entry)
  Set ask = CreateObject("Console.Lookup")
  On Error Resume Next
  asks = ask.HasEntry("WhiteMail", entry) & ask.HasEntry("words", entry)
  ask.HasEntry "pop3", entry
  asks = asks & Err.Number
  Err.Clear
  ask.Listed "list.example.org", "no address"
  asks = asks & Err.Number & ask.Address("")
End Function)");
  runner.load_into_engine(conn, "AV");
  EXPECT_EQ(runner.call_vbs("asks", "friend@example.com").text, "TrueFalse55");
  EXPECT_EQ(runner.call_vbs("asks", "it's nobody").text, "FalseFalse55");
}

// The web host lets events of the page run while a box is open.
TEST_F(ScriptRunnerTest, NothingRunsBesideAScriptThatWaits) {
  class NestingHost : public test::RecordingHost {
   public:
    BoxReply message_box(const MessageBox& box) override {
      if (inner) inner();
      return RecordingHost::message_box(box);
    }
    std::function<void()> inner;
  };
  NestingHost nesting;
  Console other(folder.path(), nesting);
  register_components(other);
  put("ask", "AV", 1, 1, returning("ask", "MsgBox(input)"));
  ScriptRunner waiting(other);
  nesting.inner = [&] {
    waiting.loaddb();
    EXPECT_EQ(waiting.call_all("", "AV"), 0);
  };
  EXPECT_EQ(run(waiting, "AV"), 1);
  EXPECT_GE(other.activity().failures(), 2u);
}

TEST_F(ScriptRunnerTest, SampleScriptsRunAtTheirPositions) {
  for (const sample::Script& script : sample::scripts()) {
    put(script.name, script.position, script.priority, script.visible, "");
    const auto row = row_of(script.name);
    row->set_bytes("scriptcontent", script.stored());
    row->update();
  }
  const struct {
    std::string_view position, input;
    int sum;
  } cases[] = {
      {"CONNECT", "203.0.113.9", 2},
      {"ENVELOPE", "HELO localhost", 5},
      {"ENVELOPE", "MAIL FROM:<ann12345@spam.example>", 3},
      {"HEADER", "From: a@b.example\r\nSubject: Casino and pills\r\n", 4},
      {"HEADERENV", "rcpt to:a", 0},
      {"BODYSTREAM", "http://a.example", 0},
      {"BODY", "short", 0},
      {"AV", "holiday.SCR", 10},
      {"NEVER", "x", 0},
  };
  for (const auto& c : cases) {
    runner.load_into_engine(conn, c.position);
    if (c.position == "NEVER") continue;
    EXPECT_EQ(runner.call_all(c.input, c.position), c.sum) << c.position;
    EXPECT_THAT(problems(runner), IsEmpty());
  }
  EXPECT_EQ(runner.call_vbs("field_of", "Subject: Hello").text, "hello");
}

}  // namespace
}  // namespace zrl
