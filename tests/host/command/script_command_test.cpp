#include <fstream>

#include <gtest/gtest.h>

#include "host/command/command_fixture.h"

namespace zrl::command {
namespace {

class ScriptCommandTest : public CommandTest {
 protected:
  std::string file(const std::string& name, const std::string& text) {
    const std::filesystem::path path = folder.path() / name;
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
  }
};

TEST_F(ScriptCommandTest, FilesShareOneModule) {
  const std::string library = file("library.vbs", "Function twice(x) : twice = x * 2 : End Function");
  const std::string script = file("script.vbs", "WScript.Echo \"Größe\", twice(21)\r\nMsgBox \"box\"");
  EXPECT_EQ(run({"script", library, script}), success) << err;
  EXPECT_EQ(out, "Größe 42\nbox\n");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "console"));
}

TEST_F(ScriptCommandTest, CallPrintsTheResult) {
  const std::string script = file("check.vbs", "Function check(data)\n  check = Len(data)\nEnd Function");
  EXPECT_EQ(run({"script", "--call", "Check", "HELO x", script}), success) << err;
  EXPECT_EQ(out, "6\n");
}

TEST_F(ScriptCommandTest, ErrorsAreToldWithTheirPlace) {
  const std::string compile = file("compile.vbs", "WScript.Echo 1\n  x = = 2\n");
  EXPECT_EQ(run({"script", compile}), failure);
  EXPECT_EQ(out, "");
  EXPECT_EQ(err, compile + "(2, 7) Microsoft VBScript compilation error: Syntax error\n");
  const std::string runtime = file("runtime.vbs", "WScript.Echo 1\nx = CInt(\"a\")\n");
  EXPECT_EQ(run({"script", runtime}), failure);
  EXPECT_EQ(out, "1\n");
  EXPECT_EQ(err, runtime + "(2, 1) Microsoft VBScript runtime error: Type mismatch: 'CInt'\n");
}

TEST_F(ScriptCommandTest, CheckRunsNothing) {
  const std::string good = file("good.vbs", "WScript.Echo 1");
  EXPECT_EQ(run({"script", "--check", good}), success) << err;
  EXPECT_EQ(out, "");
  EXPECT_EQ(run({"script", "--check", file("bad.vbs", "If")}), failure);
}

TEST_F(ScriptCommandTest, FilesComeFromManyEditors) {
  const std::string code = "WScript.Echo \"Größe €\"";
  EXPECT_EQ(run({"script", file("utf8.vbs", "\xEF\xBB\xBF" + code + "\x1A")}), success) << err;
  EXPECT_EQ(out, "Größe €\n");
  EXPECT_EQ(run({"script", file("utf16.vbs", std::string("\xFF\xFE"
                                                         "M\0s\0g\0B\0o\0x\0 \0\"\0\xF6\0\"\0",
                                                         22))}),
            success)
      << err;
  EXPECT_EQ(out, "ö\n");
  EXPECT_EQ(err, "");
  const std::string old = file("old.vbs",
                               "WScript.Echo \"Gr\xF6\xDF"
                               "e \x80\"");
  EXPECT_EQ(run({"script", old}), success) << err;
  EXPECT_EQ(out, "Größe €\n");
  EXPECT_EQ(err, old + ": not in UTF-8; read as Windows-1252\n");
}

TEST_F(ScriptCommandTest, ScriptsReadTheirNeighbours) {
  file("twice.vbs", "Function Twice(x) : Twice = x * 2 : End Function");
  const std::string script = file("main.vbs",
                                  "ExecuteGlobal CreateObject(\"Scripting.FileSystemObject\").OpenTextFile("
                                  "\"twice.vbs\").ReadAll\nWScript.Echo Twice(21), WScript.ScriptName");
  EXPECT_EQ(run({"script", script}), success) << err;
  EXPECT_EQ(out, "42 main.vbs\n");
}

TEST_F(ScriptCommandTest, QuitAndWhatCannotBeMeant) {
  EXPECT_EQ(run({"script", file("quit.vbs", "WScript.Echo 1 : WScript.Quit 7 : WScript.Echo 2")}), 7);
  EXPECT_EQ(out, "1\n");
  EXPECT_EQ(run({"script", (folder.path() / "missing.vbs").string()}), failure);
  EXPECT_EQ(run({"script"}), usage_error);
}

}  // namespace
}  // namespace zrl::command
