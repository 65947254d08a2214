#include <boost/json/serialize.hpp>
#include <fstream>

#include <stdlib.h>
#include <unistd.h>

#include "command_fixture.h"
#include "core/text/files.h"
#include "host/version.h"

namespace zrl::command {
namespace {

using testing::HasSubstr;
namespace json = boost::json;

std::string texts_of(const json::object& result, const char* list, const char* member) {
  std::string texts;
  for (const json::value& entry : result.at(list).as_array()) {
    texts += std::string(entry.at(member).as_string()) + "\n";
  }
  return texts;
}

TEST_F(CommandTest, APageIsShownAndItsWritesAreTold) {
  const json::object result = run_do({"general", "checkmid=1", "checkmid=1", "blockndr"});
  EXPECT_EQ(result.at("page").as_string(), "general");
  const json::object& box = result.at("controls").at("checkmid").as_object();
  EXPECT_EQ(json::serialize(box),
            R"({"kind":"CheckBox","caption":"Require a message identifier","value":1,)"
            R"("toolTip":"Refuses mail without a Message-ID","enabled":true,"visible":true})");
  EXPECT_EQ(texts_of(result, "activity", "text"),
            "set_option autoimport=0\nset_string version=" + std::string(version) +
                "\nset_option checkmid=1\nset_option blockndr=1\nset_option autoBLheader=0\n");
  EXPECT_EQ(texts_of(result, "said", "text"),
            "\"Require a message identifier\" switched on\n\"Block non-delivery reports\" switched on\n");
  EXPECT_EQ(texts_of(result, "said", "tone"), "good\ngood\n");
  EXPECT_TRUE(result.at("forms").as_object().empty());
  EXPECT_TRUE(result.at("messages").as_array().empty());
  EXPECT_EQ(run_do({"general"}).at("controls").at("checkmid").at("value").as_int64(), 1);
}

TEST_F(CommandTest, EveryKindTellsItsProperties) {
  const json::object controls = run_do({"allcontrols"}).at("controls").as_object();
  const std::pair<const char*, const char*> expected[] = {
      {"Frame1", "kind caption toolTip enabled visible"},
      {"Label1", "kind caption toolTip enabled visible"},
      {"Text1", "kind text toolTip enabled visible"},
      {"Check1", "kind caption value toolTip enabled visible"},
      {"Option1", "kind caption value toolTip enabled visible"},
      {"fill", "kind caption toolTip enabled visible"},
      {"List1", "kind items index toolTip enabled visible"},
      {"Combo1", "kind text items index toolTip enabled visible"},
      {"Timer1", "kind interval enabled"},
      {"HScroll1", "kind value min max toolTip enabled visible"},
  };
  for (const auto& [name, members] : expected) {
    std::string found;
    for (const auto& member : controls.at(name).as_object()) {
      found += (found.empty() ? "" : " ") + std::string(member.key());
    }
    EXPECT_EQ(found, members) << name;
  }
  EXPECT_EQ(controls.at("List1").at("index").as_int64(), -1);
}

TEST_F(CommandTest, AScriptIsWrittenRunAndDeleted) {
  const std::string code = "scriptsource=Function twice(input)\n twice = 2 * input\nEnd Function";
  json::object result =
      run_do({"ScriptEngine", "scriptnamen=twice", "insertnew", "inputbox=21", code, "executescript"});
  EXPECT_EQ(result.at("controls").at("outputlabel").at("caption"), "The result of your script is: 42");
  EXPECT_FALSE(result.at("controls").at("scriptsource").as_object().contains("marks"));
  result = run_do({"ScriptEngine", "allscripts=1", "scriptnamen#0", "inputbox=many", "executescript"});
  const json::value& mark = result.at("controls").at("scriptsource").at("marks").at(0);
  EXPECT_EQ(mark.at("name"), "twice");
  EXPECT_EQ(mark.at("line"), 2);
  EXPECT_THAT(std::string(mark.at("text").as_string()), HasSubstr("Type mismatch"));
  EXPECT_THAT(texts_of(result, "activity", "error"), HasSubstr("twice(2, "));
  result =
      run_do({"ScriptEngine", "allscripts=1", "scriptnamen#0", "deletefromdb", "allscripts", "allscripts"});
  EXPECT_TRUE(result.at("controls").at("scriptnamen").at("items").as_array().empty());
}

TEST_F(CommandTest, StepsActAsAUserWould) {
  const json::object controls =
      run_do({"allcontrols", "Text1=a=b", "Option2", "Combo1=BODY", "Combo2=typed", "List1=banana.example",
              "HScroll1=7", "Check2=1", "hidden=now", "ticking", "Timer1.tick", "Timer1.tick"})
          .at("controls")
          .as_object();
  EXPECT_EQ(controls.at("Text1").at("text").as_string(), "banana.example");
  EXPECT_EQ(controls.at("Option1").at("value").as_int64(), 0);
  EXPECT_EQ(controls.at("Option2").at("value").as_int64(), 1);
  EXPECT_EQ(controls.at("Combo1").at("index").as_int64(), 4);
  EXPECT_EQ(controls.at("Combo2").at("text").as_string(), "typed");
  EXPECT_EQ(controls.at("List1").at("index").as_int64(), 1);
  EXPECT_EQ(controls.at("HScroll1").at("value").as_int64(), 7);
  EXPECT_EQ(controls.at("hidden").at("text").as_string(), "now");
  EXPECT_EQ(controls.at("ticks").at("caption").as_string(), "2 ticks");
}

TEST_F(CommandTest, WhatAUserCannotDoStopsTheRun) {
  const std::pair<const char*, const char*> cases[] = {{"nothing", "there is no control nothing"},
                                                       {"disabled", "disabled is disabled"},
                                                       {"hidden=x", "hidden is hidden"},
                                                       {"List1=fig.example", "has no item \"fig.example\""},
                                                       {"List1#3", "has no item 3"},
                                                       {"HScroll1=301", "has no position 301"},
                                                       {"Timer1.tick", "Timer1 is disabled"},
                                                       {"Combo1=CONNECTED", "has no item"},
                                                       {"headline", "cannot be clicked"},
                                                       {"sample.source=x", "no form sample is open"},
                                                       {"sample.close", "no dialog sample is open"}};
  for (const auto& [step, message] : cases) {
    EXPECT_EQ(run({"do", "allcontrols", step, "ask"}), failure) << step;
    EXPECT_THAT(err, HasSubstr(message)) << step;
    EXPECT_EQ(out, "");
  }
  EXPECT_EQ(run({"do", "allcontrols", "Check1=2"}), usage_error);
}

TEST_F(CommandTest, MessageBoxesAreAnsweredAsTold) {
  const json::object result = run_do({"allcontrols", "ask", "answer=cancel", "ask", "fail"});
  EXPECT_EQ(texts_of(result, "messages", "reply"), "ok\ncancel\nok\n");
  EXPECT_EQ(result.at("messages").at(2).at("style").as_int64(), 16);
  EXPECT_EQ(result.at("controls").at("echo").at("caption").as_string(), "Kept");
}

TEST_F(CommandTest, ADialogIsModalAndItsHandlerGoesOnWhenItCloses) {
  json::object result = run_do({"allcontrols", "open", "sample.source=x.example", "sample.apply", "Option1"});
  EXPECT_EQ(result.at("controls").at("List1").at("items").as_array().back().as_string(), "x.example");
  EXPECT_EQ(result.at("controls").at("echo").at("caption").as_string(), "First");
  EXPECT_TRUE(result.at("forms").as_object().empty());

  result = run_do({"allcontrols", "open", "sample.close"});
  EXPECT_EQ(result.at("controls").at("echo").at("caption").as_string(), "The dialog was shown");

  // A dialog that is left open is told as it stood, and then closed.
  result = run_do({"allcontrols", "open", "sample.source=kept"});
  EXPECT_EQ(result.at("forms").at("sample").at("caption").as_string(), "A dialog");
  EXPECT_EQ(result.at("forms").at("sample").at("controls").at("source").at("text").as_string(), "kept");
  EXPECT_EQ(result.at("controls").at("echo").at("caption").as_string(), "The dialog was shown");

  EXPECT_EQ(run({"do", "allcontrols", "open", "ask"}), failure);
  EXPECT_THAT(err, HasSubstr("the dialog sample is open"));
}

TEST_F(CommandTest, StepsComeFromStandardInputWhereTheyAreTold) {
  const json::object result = run_do({"allcontrols", "Check2", "-", "Option2"}, "hidden=one\r\n\nOption1\n");
  EXPECT_EQ(result.at("controls").at("hidden").at("text").as_string(), "one");
  EXPECT_EQ(result.at("controls").at("echo").at("caption").as_string(), "Second");
}

TEST_F(CommandTest, ProgramsAreRecordedAndFailuresAreNoErrors) {
  const json::object result = run_do({"allcontrols", "program", "wrong"});
  EXPECT_EQ(result.at("programs").at(0).at("command_line").as_string(), "talk.exe 192.0.2.1 25");
  const json::object& last = result.at("activity").as_array().back().as_object();
  EXPECT_EQ(last.at("kind").as_string(), "sql");
  EXPECT_EQ(last.at("text").as_string(), "DELETE * FROM nowhere");
  EXPECT_FALSE(last.at("ok").as_bool());
  EXPECT_NE(last.at("error").as_string(), "");
}

TEST_F(CommandTest, ProgramsRunInTheConsolesFolder) {
  const auto told = folder.path() / "told";
  std::ofstream(folder.path() / "ProxyServiceControl") << "#!/bin/sh\npwd > " << told.string() << "\n";
  std::filesystem::permissions(folder.path() / "ProxyServiceControl", std::filesystem::perms::owner_all);
  const std::string path = ::getenv("PATH");
  ::setenv("PATH", (folder.path().string() + ":" + path).c_str(), 1);
  EXPECT_EQ(run({"do", "--start-programs", "ServiceControl", "Command3"}), 0) << err;
  ::setenv("PATH", path.c_str(), 1);
  for (int i = 0; i < 200 && (!std::filesystem::exists(told) || read_file(told).empty()); ++i)
    ::usleep(20'000);
  EXPECT_EQ(read_file(told), std::filesystem::canonical(folder.path() / "console").string() + "\n");
}

// As a browser ends the lines of such a field; a source text keeps its own.
TEST_F(CommandTest, LinesOfTextsEndAsTheProtocolWantsThem) {
  run({"init"});
  run_do({"strings", "welcome=220-one\n220-two\r\n220 three", "updatedb"});
  const auto page = run_do({"strings"});
  EXPECT_EQ(page.at("controls").at("welcome").at("text").as_string(), "220-one\r\n220-two\r\n220 three");
  const auto script = run_do({"ScriptEngine", "scriptsource=' a\n' b"});
  EXPECT_EQ(script.at("controls").at("scriptsource").at("text").as_string(), "' a\n' b");
}

TEST_F(CommandTest, PeopleGetNothingThatTheirTerminalObeys) {
  EXPECT_EQ(run({"do", "allcontrols", "List2#3", "fill"}), 0);
  EXPECT_EQ(out.find('\x1b'), out.npos);
  EXPECT_THAT(out, HasSubstr("> \\x1b[31mred"));
  EXPECT_THAT(out, HasSubstr("... and 999980 more"));
  EXPECT_LT(out.size(), 10'000u);
  EXPECT_NE(run({"do", "no\u200fpage\u061c"}), 0);
  EXPECT_THAT(err, HasSubstr("\"no\\xe2\\x80\\x8fpage\\xd8\\x9c\""));
}

TEST_F(CommandTest, PeopleDoNotSeePasswords) {
  EXPECT_EQ(run({"do", "pop_config", "username=me", "server=pop.example", "password=pa55", "addmod"}), 0);
  EXPECT_THAT(out, HasSubstr("set [password]='********' where"));
  EXPECT_THAT(out, testing::Not(HasSubstr("pa55")));
}

}  // namespace
}  // namespace zrl::command
