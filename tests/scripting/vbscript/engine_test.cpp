#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scripting/vbscript/script_support.h"

namespace zrl::vbs::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

ScriptError error_of(Engine& engine, std::string_view text) {
  try {
    engine.add_code("file.vbs", text);
  } catch (const ScriptError& error) {
    return error;
  }
  return {};
}

TEST(EngineTest, TextsShareOneNameSpace) {
  ScriptHost host;
  Engine engine(host);
  engine.add_code("one", "Function first(x)\nfirst = twice(x) + shared\nEnd Function");
  engine.add_code("two", "Function twice(x)\ntwice = x * 2\nEnd Function\nDim shared : shared = 100");
  EXPECT_TRUE(engine.has_procedure("FIRST"));
  EXPECT_FALSE(engine.has_procedure("third"));
  EXPECT_EQ(engine.call("First", "21").number, 142);
  engine.add_code("three", "Function twice(x)\ntwice = 1\nEnd Function");
  EXPECT_EQ(engine.call("first", "21").number, 101);
}

TEST(EngineTest, ResultsAreTextAndNumber) {
  ScriptHost host;
  Engine engine(host);
  engine.add_code("t", R"(Function text(x) : text = "<" & x & "€>" : End Function
Function half(x) : half = 2.5 : End Function
Function none(x) : End Function
Function nought : nought = 0 : End Function
Function object(x) : Set object = New RegExp : End Function)");
  EXPECT_EQ(engine.call("text", "ä").text, "<ä€>");
  EXPECT_FALSE(engine.call("text", "ä").number.has_value());
  EXPECT_EQ(engine.call("half", "").number, 2);
  EXPECT_TRUE(engine.call("none", "").is_empty);
  EXPECT_EQ(engine.call("nought", "").text, "0");
  EXPECT_TRUE(engine.call("object", "").is_empty);
  EXPECT_THROW(engine.call("missing", ""), ScriptError);
}

TEST(EngineTest, ErrorsTellTheirPlace) {
  ScriptHost host;
  Engine engine(host);
  const ScriptError compile = error_of(engine, "x = 1\r\nIf x Then\r\n  y = = 2\r\nEnd If");
  EXPECT_EQ(compile.kind, ScriptError::Kind::compilation);
  EXPECT_EQ(compile.number, 1002);
  EXPECT_EQ(compile.line, 3U);
  EXPECT_EQ(compile.column, 7U);
  const ScriptError runtime = error_of(engine, "x = 1\n  y = 1 / 0");
  EXPECT_EQ(runtime.kind, ScriptError::Kind::runtime);
  EXPECT_EQ(runtime.name, "file.vbs");
  EXPECT_EQ(runtime.line, 2U);
  EXPECT_EQ(runtime.column, 3U);
  EXPECT_EQ(runtime.description, "Division by zero");
  // In a procedure of another text.
  engine.add_code("lib.vbs", "Sub fails\n\n  x = CInt(\"a\")\nEnd Sub");
  const ScriptError called = error_of(engine, "fails");
  EXPECT_EQ(called.name, "lib.vbs");
  EXPECT_EQ(called.line, 3U);
  EXPECT_EQ(called.description, "Type mismatch: 'CInt'");
}

TEST(EngineTest, CompileOnlyRunsNothing) {
  ScriptHost host;
  Engine engine(host, {}, true);
  engine.add_code("t", "WScript.Echo 1", Engine::Mode::compile_only);
  EXPECT_TRUE(host.lines.empty());
  EXPECT_THROW(engine.add_code("t", "If", Engine::Mode::compile_only), ScriptError);
}

TEST(EngineTest, ATextThatDoesNotCompileAddsNothing) {
  ScriptHost host;
  Engine engine(host);
  engine.add_code("t", "Function f(x) : f = 1 : End Function");
  EXPECT_THROW(engine.add_code("t", "Function f(x) : f = 2 : End Function\nSub"), ScriptError);
  EXPECT_THROW(engine.add_code("t", "Function f(x) : f = 2 : End Function\nDim a, a"), ScriptError);
  EXPECT_EQ(engine.call("f", "").number, 1);
}

TEST(EngineTest, ResetFreesCyclesAndTerminates) {
  ScriptHost host;
  Engine engine(host, {}, true);
  const std::size_t before = engine.memory_used();
  engine.add_code("t", R"(Class Node
  Public other, data
  Private Sub Class_Initialize : ReDim data(100) : End Sub
  Private Sub Class_Terminate : WScript.Echo "end" : End Sub
End Class
Set a = New Node : Set b = New Node
Set a.other = b : Set b.other = a : Set a.data(1) = b
Set d = CreateObject("Scripting.Dictionary") : Set d("self") = d
Set a = Nothing : Set b = Nothing : Set d = Nothing)");
  EXPECT_TRUE(host.lines.empty());
  engine.reset();
  EXPECT_THAT(host.lines, ElementsAre("end", "end"));
  EXPECT_EQ(engine.memory_used(), before);
  EXPECT_FALSE(engine.has_procedure("f"));
}

TEST(EngineTest, ScriptsReachNothingOutside) {
  for (const char* what : {"Scripting.FileSystemObject", "WScript.Shell", "MSXML2.XMLHTTP", "ADODB.Stream"}) {
    const auto output = output_of(std::string("Set x = CreateObject(\"") + what + "\")");
    EXPECT_THAT(output, ElementsAre(HasSubstr("error 429")));
  }
  ScriptHost host;
  Engine engine(host);
  EXPECT_EQ(error_of(engine, "WScript.Echo 1").number, 424);
}

TEST(EngineTest, WithoutRegularExpressionsMatchingFails) {
  ScriptHost host;
  host.with_regexps = false;
  Engine engine(host);
  engine.add_code("t", "Set r = New RegExp : r.Pattern = \"a\"");
  EXPECT_EQ(error_of(engine, "x = r.Test(\"a\")").number, 429);
}

TEST(EngineTest, QuitEndsTheCall) {
  EXPECT_THAT(output_of("On Error Resume Next\nWScript.Echo 1\nWScript.Quit 3\nWScript.Echo 2"),
              ElementsAre("1", "quit 3"));
}

struct CompileCase {
  const char* text;
  int number;
};

TEST(EngineTest, CompileErrors) {
  const CompileCase cases[] = {
      {"x = \"abc", 1033},
      {"x = 1 +", 1023},
      {"If x", 1017},
      {"If x Then\ny = 1", 1014},
      {"For i = 1", 1013},
      {"For 5 = 1 To 2", 1010},
      {"For i = 1 To 2", 1020},
      {"Do\nx = 1", 1019},
      {"While 1", 1018},
      {"Loop", 1038},
      {"Next", 1055},
      {"Exit Do", 1039},
      {"Exit Sub", 1039},
      {"Sub f\nExit Function\nEnd Sub", 1039},
      {"Dim x, x", 1041},
      {"Sub f(a, a)\nEnd Sub", 1041},
      {"Sub f\nDim a : Dim a\nEnd Sub", 1041},
      {"Const c = 1 + 2", 1025},
      {"Const c = x", 1045},
      {"Dim a(x)", 1026},
      {"f(1, 2)", 1044},
      {"Set Me = x", 1037},
      {"x = 1 y = 2", 1025},
      {"Select x", 1021},
      {"For Each x Of y", 1046},
      {"Class\nEnd Class", 1010},
      {"Class C\nPublic Sub Class_Initialize(x)\nEnd Sub\nEnd Class", 1053},
      {"Class C\nProperty Let x\nEnd Property\nEnd Class", 1054},
      {"Class C\nDefault Property Get x\nEnd Property\nEnd Class", 1057},
      {"Class C\nProperty Get x\nEnd Property\nProperty Let x(a, b)\nEnd Property\nEnd Class", 1051},
      {"Class C\nPublic x\nPublic Sub x\nEnd Sub\nEnd Class", 1041},
      {"x = 12abc", 1025},
      {"x = ?", 1032},
      {"x = [a", 1007},
      {"Set x 5", 1011},
      {"Property Get x\nEnd Property", 1048},
  };
  for (const CompileCase& test : cases) {
    ScriptHost host;
    Engine engine(host);
    const ScriptError error = error_of(engine, test.text);
    EXPECT_EQ(error.number, test.number) << test.text << "\n" << error.description;
    EXPECT_EQ(error.kind, ScriptError::Kind::compilation) << test.text;
  }
}

}  // namespace
}  // namespace zrl::vbs::test
