#include <chrono>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scripting/vbscript/script_support.h"

namespace zrl::vbs::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

Limits small() {
  Limits limits;
  limits.call_time = 100ms;
  limits.memory = std::size_t{4} << 20;
  limits.string_units = 200'000;
  limits.call_depth = 500;
  return limits;
}

std::string repeated(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST(LimitsTest, EndlessScriptsAreStopped) {
  for (const char* script : {
           "Do : Loop",
           "While True : Wend",
           "On Error Resume Next\nDo : x = 1 / 0 : Loop",
           "For i = 1 To 2 Step 0 : Next",
           "Sub f : g : End Sub : Sub g : End Sub\nDo : f : Loop",
           "Set d = CreateObject(\"Scripting.Dictionary\")\nDo : d(1) = 2 : Loop",
           "Do : x = Eval(\"1\") : Loop",
           "Class C : Private Sub Class_Terminate : Set x = New C : End Sub : End Class\n"
           "Set o = New C : Set o = Nothing : WScript.Echo 1",
           "Class C : Private Sub Class_Terminate : Set x = New C : y = 1 / 0 : End Sub : End Class\n"
           "On Error Resume Next : Set o = New C : Set o = Nothing : WScript.Echo 1",
       }) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(output_of(script, small()), ElementsAre(HasSubstr("was stopped"))) << script;
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s) << script;
  }
}

// Time that a person takes for an answer is not the script's.
TEST(LimitsTest, WaitingForAPersonDoesNotCount) {
  struct SlowPerson : ScriptHost {
    int msg_box(const std::string& text, int buttons, const std::string& title) override {
      std::this_thread::sleep_for(1100ms);
      return ScriptHost::msg_box(text, buttons, title);
    }
    std::optional<std::string> input_box(const std::string&, const std::string&,
                                         const std::string&) override {
      std::this_thread::sleep_for(1100ms);
      return "5000";
    }
  } host;
  Limits limits = small();
  limits.call_time = 1s;
  Engine engine(host, limits);
  engine.add_code("t",
                  "Function f(x) : MsgBox x : For i = 1 To InputBox(x) : f = i : Next : End Function\n"
                  "Sub endless(x) : MsgBox x : Do : Loop : End Sub");
  EXPECT_EQ(engine.call("f", "").number, 5000);
  EXPECT_THROW(engine.call("endless", ""), ScriptError);
}

// Work counts, not only instructions: each of these spends its time in few of them.
TEST(LimitsTest, LongTextsCountAgainstTheTime) {
  Limits limits;
  limits.call_time = 300ms;
  for (const char* script : {
           "On Error Resume Next\nDo : s = s & \"text\" : Loop",
           "s = String(10000000, \"x\") : Do : t = UCase(s) : Loop",
           "s = String(10000000, \"x\") : Do : t = StrReverse(s) : Loop",
           "s = String(10000000, \"x\") : Do : n = InStr(s, \"y\") : Loop",
           "s = String(6000000, \"x\") : t = s & \"\" : Do : n = (s = t) : Loop",
           "s = String(10000000, \"1\") : On Error Resume Next : Do : n = s + 1 : Loop",
           "ReDim a(1500000) : Do : b = a : b(0) = 1 : Loop",
           "Dim a(3000000) : Do : Erase a : Loop",
           "Do : ReDim a(1500000) : Loop",
           "s = String(2000000, \"x\") : Set d = CreateObject(\"Scripting.Dictionary\") : d.CompareMode = 1\n"
           "Do : d(s) = 1 : Loop",
           "s = String(500000, \":\") : Do : Execute s : Loop",
           "s = String(2000000, \"x\") : Do : n = InStrB(s, String(1000000, \"x\") & \"y\") : Loop",
       }) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(output_of(script, limits), ElementsAre(HasSubstr("was stopped"))) << script;
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s) << script;
  }
}

// A string that grows reaches its limit soon, whatever the time: it keeps spare room up to there.
TEST(LimitsTest, AGrowingStringReachesItsLength) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(output_of("Do : s = s & \"text\" : Loop"), ElementsAre(HasSubstr("error 14 ")));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 8s);
}

TEST(LimitsTest, ClassTerminateThatLoopsIsTold) {
  const std::string endless = "Class C : Private Sub Class_Terminate : Do : Loop : End Sub : End Class\n";
  EXPECT_THAT(output_of(endless + "Set x = New C : Set x = Nothing", small()),
              ElementsAre(HasSubstr("was stopped")));
  ScriptHost host;
  {
    Engine engine(host, small());
    engine.add_code("t", endless + "Set x = New C");
  }
  EXPECT_THAT(host.lines, ElementsAre(HasSubstr("stopped: The script ran longer")));
}

TEST(LimitsTest, SleepIsTimeOfTheCall) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(output_of("WScript.Sleep 10 : WScript.Echo 1 : WScript.Sleep 100000", small()),
              ElementsAre("1", HasSubstr("was stopped")));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
}

// Filters take copies of a mail: the memory follows it.
TEST(LimitsTest, MemoryFollowsTheText) {
  ScriptHost host;
  Limits patient;
  patient.call_time = 120s;
  Engine engine(host, patient);
  engine.add_code("t", R"(Function filter(mail)
  low = LCase(mail)
  low = Replace(low, "viagra", "v.i.a.g.r.a")
  lines = Split(low, vbCrLf)
  Set seen = CreateObject("Scripting.Dictionary")
  For Each line In lines
    seen(line) = seen(line) + 1
  Next
  filter = UBound(lines) & " " & seen.Count & " " & Len(UCase(low))
End Function)");
  std::string mail;
  while (mail.size() < 50'000'000)
    mail += "buy viagra now, it is cheap and good and sold to everybody who reads\r\n";
  EXPECT_THAT(engine.call("filter", mail).text, testing::StartsWith("714286 2 "));
  EXPECT_EQ(engine.call("filter", "a\r\nb").text, "1 2 4");
  Limits strict;
  strict.memory_per_unit = 0;
  Engine narrow(host, strict);
  narrow.add_code("t", "Function twice(mail) : twice = Len(mail & mail) : End Function");
  EXPECT_THROW(narrow.call("twice", mail), ScriptError);
}

// Nothing that a builtin or the compiler needs meanwhile goes beyond the limit uncounted.
TEST(LimitsTest, TablesOfBuiltinsAndOfTheCompilerAreCounted) {
  EXPECT_THAT(output_of("s = String(10000000, \",\") : a = Split(s, \",\")"),
              ElementsAre(HasSubstr("error 7 ")));
  EXPECT_THAT(output_of("s = String(4000000, \"a\") : t = Replace(s, \"a\", \"b\") : WScript.Echo Len(t)"),
              ElementsAre("4000000"));
  Limits limits;
  limits.memory_per_unit = 0;
  limits.call_time = 300s;
  std::string text;
  for (int i = 0; i < 600'000; ++i) text += "x = 1\n";
  EXPECT_THAT(output_of(text, limits), ElementsAre(HasSubstr("error 7 ")));
  Limits patient;
  patient.call_time = 300s;  // a busy machine
  EXPECT_THAT(output_of(text + "WScript.Echo x", patient), ElementsAre("1"));
}

TEST(LimitsTest, TheEngineGoesOnAfterALimit) {
  ScriptHost host;
  Engine engine(host, small());
  engine.add_code("t", "Function f(x) : f = x + 1 : End Function\nSub endless(x) : Do : Loop : End Sub");
  EXPECT_THROW(engine.call("endless", ""), ScriptError);
  EXPECT_EQ(engine.call("f", "1").number, 2);
  EXPECT_THROW(engine.add_code("u", "s = \"x\" : Do : s = s & s : Loop"), ScriptError);
  EXPECT_EQ(engine.call("f", "1").number, 2);
}

TEST(LimitsTest, MemoryIsCounted) {
  Limits limits = small();
  limits.call_time = 60s;  // a busy machine must not stop them before
  EXPECT_THAT(output_of("ReDim a(10000000)", limits), ElementsAre(HasSubstr("error 7 ")));
  EXPECT_THAT(
      output_of("Dim n : ReDim a(1000)\nDo : n = n + 1 : a(n Mod 1000) = String(100000, \"x\") : Loop",
                limits),
      ElementsAre(HasSubstr("error 7 ")));
  EXPECT_THAT(
      output_of("Set d = CreateObject(\"Scripting.Dictionary\")\nDo : n = n + 1 : d(n) = n : Loop", limits),
      ElementsAre(HasSubstr("error 7 ")));
  EXPECT_THAT(output_of("Do : n = n + 1 : ExecuteGlobal \"Sub f\" & n & \" : End Sub\" : Loop", limits),
              ElementsAre(testing::AnyOf(HasSubstr("error 7 "), HasSubstr("was stopped"))));
  const std::string expressions =
      "Dim a(100) : p = String(10000, \"a\")\n"
      "For i = 0 To 100 : Set a(i) = New RegExp : a(i).Pattern = p & i";
  EXPECT_THAT(output_of(expressions + " : x = a(i).Test(p) : Next", limits),
              ElementsAre(HasSubstr("error 7 ")));
  EXPECT_THAT(output_of(expressions + " & String(100000, \"b\") : Next", limits),
              ElementsAre(HasSubstr("error 7 ")));
  // Names stay, even where nothing bears them.
  EXPECT_THAT(output_of("p = String(240, \"a\") : Do : n = n + 1 : x = Eval(p & n) : Loop", limits),
              ElementsAre(HasSubstr("error 7 ")));
}

TEST(LimitsTest, StringsHaveASize) {
  for (const char* script :
       {"s = String(300000, \"x\")", "s = Space(300000)", "s = \"x\" : Do : s = s & s : Loop",
        "s = Replace(String(1000, \"x\"), \"x\", String(1000, \"y\"))",
        "Dim a(1000) : s = Join(a, String(1000, \"x\"))"}) {
    EXPECT_THAT(output_of(script, small()), ElementsAre(HasSubstr("error 14 "))) << script;
  }
}

TEST(LimitsTest, RecursionEnds) {
  for (const char* script : {
           "Sub f : f : End Sub : f",
           "Class C : Public Default Property Get v : v = Me & \"\" : End Property : End Class\nx = New C & "
           "\"\"",
           "Class C : Private Sub Class_Initialize : Set x = New C : End Sub : End Class\nSet y = New C",
           "Function f(x) : f = Eval(\"f(1)\") : End Function\nx = f(1)",
           "Sub f : Execute \"f\" : End Sub : f",
       }) {
    EXPECT_THAT(output_of(script, small()), ElementsAre(HasSubstr("error 28 "))) << script;
  }
}

TEST(LimitsTest, DeepNestingIsRefusedOrHandled) {
  const int many = 100'000;
  for (const std::string& script : {
           "x = " + repeated("(", many) + "1" + repeated(")", many),
           "x = " + repeated("-", many) + "1",
           "x = " + repeated("Not ", many) + "1",
           "x = a" + repeated("(a", many) + repeated(")", many),
           "x = 1" + repeated(" + 1", many),
           "x = 1" + repeated(" ^ -1", many),
           "x" + repeated(".y", many) + " 1",
           repeated("If 1 Then ", many),
           repeated("Do\n", many),
           "Const c = " + repeated("-", many) + "1",
       }) {
    EXPECT_THAT(output_of(script, small()), ElementsAre(HasSubstr("compile error 28 ")))
        << script.substr(0, 40);
  }
  EXPECT_THAT(output_of("x = \"a\"" + repeated(" & \"b\"", 800) + "\nWScript.Echo Len(x)"),
              ElementsAre("801"));
}

TEST(LimitsTest, NestingGoesAsFarAsToldAndChainsFarther) {
  constexpr int levels = 500;
  constexpr int links = 5'000;
  for (const std::string& script : {
           repeated("If True Then\n", levels) + "x = 1\n" + repeated("End If\n", levels),
           repeated("Do\n", levels) + "x = 1\n" + repeated("Exit Do\nLoop\n", levels),
           "x = " + repeated("(", levels) + "1" + repeated(")", levels),
           "x = " + repeated("Abs(", levels) + "1" + repeated(")", levels),
           "x = 1" + repeated(" + 0", links),
           "x = True" + repeated(" And True", links) + " : x = -x",
           "x = 1" + repeated(" & \"\"", links),
           "x = 5" + repeated(" = 5", links - 1) + " : x = 1 + 0 * x",
           "x = 1" + repeated(" + _\n 0", links),
           "Class C : Public v : Public Property Get p : Set p = Me : End Property : End Class\n"
           "Set o = New C : o.v = 1 : x = o" +
               repeated(".p", links) + ".v",
       }) {
    EXPECT_THAT(output_of(script + "\nWScript.Echo x"), ElementsAre("1")) << script.substr(0, 40);
  }
  EXPECT_THAT(output_of(repeated("If True Then\n", levels + 1) + repeated("End If\n", levels + 1)),
              ElementsAre(HasSubstr("compile error 28 ")));
  EXPECT_THAT(output_of("x = " + repeated("(", levels + 1) + "1" + repeated(")", levels + 1)),
              ElementsAre(HasSubstr("compile error 28 ")));
}

TEST(LimitsTest, LongChainsOfObjectsAndArraysEnd) {
  EXPECT_THAT(output_of("Class Node : Public p : End Class\n"
                        "For i = 1 To 200000 : Set n = New Node : Set n.p = h : Set h = n : Next\n"
                        "Set n = Nothing : Set h = Nothing : WScript.Echo 1"),
              ElementsAre(HasSubstr("error 424")));
  EXPECT_THAT(output_of("Class Node : Public p : End Class\n"
                        "Set h = Nothing\n"
                        "For i = 1 To 200000 : Set n = New Node : Set n.p = h : Set h = n : Next\n"
                        "Set n = Nothing : Set h = Nothing : WScript.Echo 1"),
              ElementsAre("1"));
  EXPECT_THAT(output_of("a = 0\nFor i = 1 To 200000 : a = Array(a) : Next\na = 0 : WScript.Echo 1"),
              ElementsAre("1"));
  EXPECT_THAT(
      output_of(
          "Class Node : Public p\nPrivate Sub Class_Terminate : count = count + 1 : End Sub : End Class\n"
          "Dim count : Set h = Nothing\n"
          "For i = 1 To 20000 : Set n = New Node : Set n.p = h : Set h = n : Next\n"
          "Set n = Nothing : Set h = Nothing : WScript.Echo count"),
      ElementsAre("20000"));
}

// A text search that grows with both lengths would never come back.
TEST(LimitsTest, SearchesAreLinear) {
  EXPECT_THAT(output_of("s = String(2000000, \"a\") : n = String(1000000, \"a\") & \"b\"\n"
                        "WScript.Echo InStr(s, n), InStrRev(s, n), Len(Replace(s, n, \"\"))"),
              ElementsAre("0 0 2000000"));
}

// What each declaration is compared with must not grow with the text.
TEST(LimitsTest, ManyDeclarationsTakeTheirTimeOnly) {
  constexpr int count = 60'000;
  const auto named = [](const std::string& before, const std::string& after, int names) {
    std::string text;
    for (int i = 0; i < names; ++i) text += before + std::to_string(i) + after;
    return text;
  };
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(output_of("Class C\n" + named("Dim f", "\n", count) +
                        "End Class\nSet o = New C : o.f59999 = 1 : WScript.Echo o.f59999"),
              ElementsAre("1"));
  EXPECT_THAT(output_of("Class C\n" + named("Sub f", " : End Sub\n", count / 2) +
                        "Function g : g = 2 : End Function\nEnd Class\nWScript.Echo (New C).g"),
              ElementsAre("2"));
  EXPECT_THAT(output_of("Sub s(" + named("p", ", ", count) + "P7) : End Sub"),
              ElementsAre(HasSubstr("Name redefined")));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST(LimitsTest, KeysOfALargeDictionaryAreRenamedQuickly) {
  EXPECT_THAT(output_of("Set d = CreateObject(\"Scripting.Dictionary\")\n"
                        "For i = 1 To 20000 : d(i) = i : Next\n"
                        "For i = 1 To 20000 : d.Key(i) = \"k\" & i : Next\n"
                        "For i = 1 To 20000 : d.Key(\"k\" & i) = -i : Next\n"
                        "WScript.Echo d.Count, d.Keys()(19999), d(-5), d.Exists(5), d.Exists(\"k5\")"),
              ElementsAre("20000 -20000 5 False False"));
}

}  // namespace
}  // namespace zrl::vbs::test
