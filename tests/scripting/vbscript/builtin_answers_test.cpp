#include <gtest/gtest.h>

#include "scripting/vbscript/script_support.h"

// What built-in functions make of values that they are not meant for. An answer is a sub-type and a value, a
// text between single quotes, or an error number behind "!".
namespace zrl::vbs::test {
namespace {

struct Row {
  const char* call;  // with a question mark for the value
  // Of Null, Empty, Nothing, an object without a default member, an array of 1 and 2, and the text "abc".
  const char* null;
  const char* empty;
  const char* nothing;
  const char* object;
  const char* array;
  const char* text;
};

constexpr Row rows[] = {
    {"Abs(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"Array(?)(0)", "Null", "Empty", "Nothing", "Bare", "list", "'abc'"},
    {"Asc(?)", "!94", "!5", "!91", "!438", "!13", "Integer:97"},
    {"AscB(?)", "!94", "!5", "!91", "!438", "!13", "Byte:97"},
    {"AscW(?)", "!94", "!5", "!91", "!438", "!13", "Integer:97"},
    {"Atn(?)", "!94", "Double:0", "!91", "!438", "!13", "!13"},
    {"CBool(?)", "!94", "Boolean:False", "!91", "!438", "!13", "!13"},
    {"CByte(?)", "!94", "Byte:0", "!91", "!438", "!13", "!13"},
    {"CCur(?)", "!94", "Currency:0", "!91", "!438", "!13", "!13"},
    {"CDate(?)", "!94", "Date:12:00:00 AM", "!91", "!438", "!13", "!13"},
    {"CDbl(?)", "!94", "Double:0", "!91", "!438", "!13", "!13"},
    {"Chr(?)", "!94", "'%00'", "!91", "!438", "!13", "!13"},
    {"ChrB(?)", "!94", "'%00'", "!91", "!438", "!13", "!13"},
    {"ChrW(?)", "!94", "'%00'", "!91", "!438", "!13", "!13"},
    {"CInt(?)", "!94", "Integer:0", "!91", "!438", "!13", "!13"},
    {"CLng(?)", "!94", "Long:0", "!91", "!438", "!13", "!13"},
    {"Cos(?)", "!94", "Double:1", "!91", "!438", "!13", "!13"},
    {"CreateObject(?)", "!94", "!429", "!91", "!438", "!13", "!429"},
    {"CSng(?)", "!94", "Single:0", "!91", "!438", "!13", "!13"},
    {"CStr(?)", "!94", "''", "!91", "!438", "!13", "'abc'"},
    {"DateAdd(?, 1, #1/1/2020#)", "!94", "!5", "!91", "!438", "!13", "!5"},
    {"DateAdd(\"d\", ?, #1/1/2020#)", "!94", "Date:1/1/2020", "!91", "!438", "!13", "!13"},
    {"DateAdd(\"d\", 1, ?)", "Null", "Date:12/31/1899", "!91", "!438", "!13", "!13"},
    {"DateDiff(\"d\", ?, #1/1/2020#)", "Null", "Long:43831", "!91", "!438", "!13", "!13"},
    {"DatePart(\"yyyy\", ?)", "Null", "Integer:1899", "!91", "!438", "!13", "!13"},
    {"DateSerial(?, 1, 1)", "!94", "Date:1/1/2000", "!91", "!438", "!13", "!13"},
    {"DateValue(?)", "!94", "!13", "!91", "!438", "!13", "!13"},
    {"Day(?)", "Null", "Integer:30", "!91", "!438", "!13", "!13"},
    {"Escape(?)", "!94", "''", "!91", "!438", "!13", "'abc'"},
    {"Eval(?)", "Null", "Empty", "Nothing", "Bare", "list", "Empty"},
    {"Exp(?)", "!94", "Double:1", "!91", "!438", "!13", "!13"},
    {"Filter(?, \"a\")", "!94", "!13", "!91", "!438", "list", "!13"},
    {"Filter(Array(\"a\"), ?)", "!94", "list", "!91", "!438", "!13", "list"},
    {"Fix(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"FormatCurrency(?)", "!13", "'%240.00'", "!91", "!438", "!13", "!13"},
    {"FormatDateTime(?)", "!13", "'12%3A00%3A00%20AM'", "!91", "!438", "!13", "!13"},
    {"FormatNumber(?)", "!13", "'0.00'", "!91", "!438", "!13", "!13"},
    {"FormatNumber(1, ?)", "!94", "'1'", "!91", "!438", "!13", "!13"},
    {"FormatPercent(?)", "!13", "'0.00%25'", "!91", "!438", "!13", "!13"},
    {"GetRef(?)", "!13", "!13", "!91", "!438", "!13", "!5"},
    {"Hex(?)", "Null", "'0'", "!91", "!438", "!13", "!13"},
    {"Hour(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"InStr(?, \"a\")", "Null", "Long:0", "!91", "!438", "!13", "Long:1"},
    {"InStr(\"a\", ?)", "Null", "Long:1", "!91", "!438", "!13", "Long:0"},
    {"InStr(?, \"a\", \"a\")", "!94", "!5", "!91", "!438", "!13", "!13"},
    {"InStr(1, \"a\", \"a\", ?)", "!94", "Long:1", "!91", "!438", "!13", "!13"},
    {"InStrB(?, \"a\")", "Null", "Long:0", "!91", "!438", "!13", "Long:1"},
    {"InStrRev(?, \"a\")", "Null", "Long:0", "!91", "!438", "!13", "Long:1"},
    {"InStrRev(\"a\", ?)", "Null", "Long:1", "!91", "!438", "!13", "Long:0"},
    {"InStrRev(\"a\", \"a\", ?)", "!94", "!5", "!91", "!438", "!13", "!13"},
    {"Int(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"IsArray(?)", "Boolean:False", "Boolean:False", "Boolean:False", "Boolean:False", "Boolean:True",
     "Boolean:False"},
    {"IsDate(?)", "Boolean:False", "Boolean:False", "Boolean:False", "Boolean:False", "Boolean:False",
     "Boolean:False"},
    {"IsEmpty(?)", "Boolean:False", "Boolean:True", "Boolean:False", "Boolean:False", "Boolean:False",
     "Boolean:False"},
    {"IsNull(?)", "Boolean:True", "Boolean:False", "Boolean:False", "Boolean:False", "Boolean:False",
     "Boolean:False"},
    {"IsNumeric(?)", "Boolean:False", "Boolean:True", "Boolean:False", "Boolean:False", "Boolean:False",
     "Boolean:False"},
    {"IsObject(?)", "Boolean:False", "Boolean:False", "Boolean:True", "Boolean:True", "Boolean:False",
     "Boolean:False"},
    {"Join(?)", "!94", "!13", "!91", "!438", "'1%202'", "!13"},
    {"Join(Array(\"a\", \"b\"), ?)", "!94", "'ab'", "!91", "!438", "!13", "'aabcb'"},
    {"LBound(?)", "!13", "!13", "!91", "!438", "Long:0", "!13"},
    {"LCase(?)", "Null", "''", "!91", "!438", "!13", "'abc'"},
    {"Left(?, 1)", "Null", "''", "!91", "!438", "!13", "'a'"},
    {"Left(\"a\", ?)", "!94", "''", "!91", "!438", "!13", "!13"},
    {"LeftB(?, 1)", "Null", "''", "!91", "!438", "!13", "'a'"},
    {"Len(?)", "Null", "Long:0", "!91", "!438", "!13", "Long:3"},
    {"LenB(?)", "Null", "Long:0", "!91", "!438", "!13", "Long:6"},
    {"Log(?)", "!94", "!5", "!91", "!438", "!13", "!13"},
    {"LTrim(?)", "Null", "''", "!91", "!438", "!13", "'abc'"},
    {"Mid(?, 1)", "Null", "''", "!91", "!438", "!13", "'abc'"},
    {"Mid(\"a\", ?)", "!94", "!5", "!91", "!438", "!13", "!13"},
    {"Mid(\"a\", 1, ?)", "!94", "''", "!91", "!438", "!13", "!13"},
    {"MidB(?, 1)", "Null", "''", "!91", "!438", "!13", "'abc'"},
    {"Minute(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"Month(?)", "Null", "Integer:12", "!91", "!438", "!13", "!13"},
    {"MonthName(?)", "!94", "!5", "!91", "!438", "!13", "!13"},
    {"Oct(?)", "Null", "'0'", "!91", "!438", "!13", "!13"},
    {"Replace(?, \"a\", \"b\")", "!94", "''", "!91", "!438", "!13", "'bbc'"},
    {"Replace(\"a\", ?, \"b\")", "!94", "'a'", "!91", "!438", "!13", "'a'"},
    {"Replace(\"a\", \"a\", ?)", "!94", "''", "!91", "!438", "!13", "'abc'"},
    {"RGB(?, 0, 0)", "!94", "Long:0", "!91", "!438", "!13", "!13"},
    {"Right(?, 1)", "Null", "''", "!91", "!438", "!13", "'c'"},
    {"Right(\"a\", ?)", "!94", "''", "!91", "!438", "!13", "!13"},
    {"RightB(?, 1)", "Null", "''", "!91", "!438", "!13", "'%00'"},
    {"Round(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"Round(1.5, ?)", "!94", "Double:2", "!91", "!438", "!13", "!13"},
    {"RTrim(?)", "Null", "''", "!91", "!438", "!13", "'abc'"},
    {"Second(?)", "Null", "Integer:0", "!91", "!438", "!13", "!13"},
    {"SetLocale(?)", "!94", "Long:1033", "!91", "!438", "!13", "!447"},
    {"Sgn(?)", "!94", "Integer:0", "!91", "!438", "!13", "!13"},
    {"Sin(?)", "!94", "Double:0", "!91", "!438", "!13", "!13"},
    {"Space(?)", "!94", "''", "!91", "!438", "!13", "!13"},
    {"Split(?)(0)", "!94", "!9", "!91", "!438", "!13", "'abc'"},
    {"Split(\"a b\", ?)(0)", "!94", "'a%20b'", "!91", "!438", "!13", "'a%20b'"},
    {"Sqr(?)", "!94", "Double:0", "!91", "!438", "!13", "!13"},
    {"StrComp(?, \"a\")", "Null", "Integer:-1", "!91", "!438", "!13", "Integer:1"},
    {"StrComp(\"a\", \"a\", ?)", "!94", "Integer:0", "!91", "!438", "!13", "!13"},
    {"StrReverse(?)", "!94", "''", "!91", "!438", "!13", "'cba'"},
    {"String(?, \"a\")", "!94", "''", "!91", "!438", "!13", "!13"},
    {"String(2, ?)", "Null", "'%00%00'", "!91", "!438", "!13", "'aa'"},
    {"Tan(?)", "!94", "Double:0", "!91", "!438", "!13", "!13"},
    {"TimeSerial(?, 0, 0)", "!94", "Date:12:00:00 AM", "!91", "!438", "!13", "!13"},
    {"TimeValue(?)", "!94", "!13", "!91", "!438", "!13", "!13"},
    {"Trim(?)", "Null", "''", "!91", "!438", "!13", "'abc'"},
    {"TypeName(?)", "'Null'", "'Empty'", "'Nothing'", "'Bare'", "'Variant%28%29'", "'String'"},
    {"UBound(?)", "!13", "!13", "!91", "!438", "Long:1", "!13"},
    {"UCase(?)", "Null", "''", "!91", "!438", "!13", "'ABC'"},
    {"Unescape(?)", "!94", "''", "!91", "!438", "!13", "'abc'"},
    {"VarType(?)", "Integer:1", "Integer:0", "Integer:9", "Integer:9", "Integer:8204", "Integer:8"},
    {"Weekday(?)", "Null", "Integer:7", "!91", "!438", "!13", "!13"},
    {"WeekdayName(?)", "!94", "!5", "!91", "!438", "!13", "!13"},
    {"Year(?)", "Null", "Integer:1899", "!91", "!438", "!13", "!13"},
};

constexpr const char* preparation = R"(
Class Bare : End Class
Set nix = Nothing : Set thing = New Bare : list = Array(1, 2)
Function told(v)
  If IsObject(v) Then
    If v Is Nothing Then told = "Nothing" Else told = TypeName(v)
  ElseIf IsArray(v) Then
    told = "list"
  ElseIf IsNull(v) Or IsEmpty(v) Then
    told = TypeName(v)
  ElseIf VarType(v) = 8 Then
    told = "'" & Escape(v) & "'"
  Else
    told = TypeName(v) & ":" & v
  End If
End Function
On Error Resume Next
)";

TEST(BuiltinAnswersTest, OfValuesThatAreNotMeant) {
  constexpr const char* values[] = {"Null", "Empty", "nix", "thing", "list", "\"abc\""};
  std::string script = preparation;
  std::vector<std::string> calls;
  std::vector<std::string> expected;
  for (const Row& row : rows) {
    const char* const answers[] = {row.null, row.empty, row.nothing, row.object, row.array, row.text};
    for (std::size_t i = 0; i < std::size(values); ++i) {
      std::string call = row.call;
      call.replace(call.find('?'), 1, values[i]);
      script += "Err.Clear : a = \"\" : a = told(" + call +
                ") : If Err.Number <> 0 Then a = \"!\" & Err.Number\n" + "WScript.Echo a : SetLocale 1033\n";
      calls.push_back(std::move(call));
      expected.emplace_back(answers[i]);
    }
  }
  const std::vector<std::string> answers = output_of(script);
  ASSERT_EQ(answers.size(), expected.size()) << answers.back();
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(answers[i], expected[i]) << calls[i];
}

struct Answer {
  const char* call;
  const char* answer;
};

// The edges of what they are meant for.
constexpr Answer edges[] = {
    {"Left(\"abc\", 0)", "''"},
    {"Left(\"abc\", -1)", "!5"},
    {"Left(\"abc\", 2147483647)", "'abc'"},
    {"Left(\"abc\", 2147483648)", "!6"},
    {"Right(\"abc\", 4)", "'abc'"},
    {"Mid(\"abc\", 4)", "''"},
    {"Mid(\"abc\", 3, 0)", "''"},
    {"Mid(\"abc\", 2147483647)", "''"},
    {"InStr(4, \"abc\", \"c\")", "Long:0"},
    {"InStr(3, \"abc\", \"\")", "Long:3"},
    {"InStr(\"\", \"\")", "Long:0"},
    {"InStr(0, \"a\", \"a\")", "!5"},
    {"InStr(1, \"a\", \"a\", 2)", "!5"},
    {"InStrRev(\"abc\", \"c\", 3)", "Long:3"},
    {"InStrRev(\"abc\", \"c\", 4)", "Long:0"},
    {"InStrRev(\"abc\", \"c\", -1)", "Long:3"},
    {"InStrRev(\"abc\", \"\", 2)", "Long:2"},
    {"InStrRev(\"\", \"a\")", "Long:0"},
    {"Chr(0)", "'%00'"},
    {"Chr(255)", "'%FF'"},
    {"Chr(256)", "!5"},
    {"Chr(-1)", "!5"},
    {"ChrW(65535)", "'%uFFFF'"},
    {"ChrW(65536)", "!5"},
    {"ChrW(-32768)", "'%u8000'"},
    {"ChrW(-32769)", "!5"},
    {"ChrB(255)", "'%FF'"},
    {"Space(0)", "''"},
    {"Space(-1)", "!5"},
    {"String(0, \"x\")", "''"},
    {"String(3, 321)", "'AAA'"},
    {"CByte(255.4)", "Byte:255"},
    {"CByte(255.5)", "!6"},
    {"CByte(-0.5)", "Byte:0"},
    {"CInt(32767.4)", "Integer:32767"},
    {"CInt(32767.5)", "!6"},
    {"CInt(-32768.5)", "Integer:-32768"},
    {"CLng(-2147483648.5)", "Long:-2147483648"},
    {"CLng(2147483647.5)", "!6"},
    {"CSng(3.4E38)", "Single:3.4E+38"},
    {"CSng(3.5E38)", "!6"},
    {"CCur(922337203685477)", "Currency:922337203685477"},
    {"CCur(922337203685478)", "!6"},
    {"CDate(2958465)", "Date:12/31/9999"},
    {"CDate(2958466)", "!6"},
    {"CDate(-657434)", "Date:1/1/0100"},
    {"CDate(-657435)", "!6"},
    {"DateSerial(9999, 12, 31)", "Date:12/31/9999"},
    {"DateSerial(9999, 12, 32)", "!5"},
    {"DateSerial(100, 1, 1)", "Date:1/1/0100"},
    {"DateSerial(99, 1, 1)", "Date:1/1/1999"},
    {"DateSerial(29, 1, 1)", "Date:1/1/2029"},
    {"DateSerial(2023, 2, 30)", "Date:3/2/2023"},
    {"TimeSerial(23, 59, 60)", "Date:12/31/1899"},
    {"MonthName(0)", "!5"},
    {"MonthName(12)", "'December'"},
    {"MonthName(13)", "!5"},
    {"WeekdayName(0)", "!5"},
    {"WeekdayName(7)", "'Saturday'"},
    {"WeekdayName(8)", "!5"},
    {"Weekday(1, 8)", "!5"},
    {"Sqr(0)", "Double:0"},
    {"Sqr(-1)", "!5"},
    {"Log(0)", "!5"},
    {"Log(1)", "Double:0"},
    {"Exp(709)", "Double:8.21840746155497E+307"},
    {"Exp(710)", "!6"},
    {"Abs(-32768)", "Long:32768"},
    {"Abs(CInt(-32768))", "Long:32768"},
    {"Round(2.5)", "Double:2"},
    {"Round(3.5)", "Double:4"},
    {"Round(2.345, 2)", "Double:2.34"},
    {"Round(1, -1)", "!5"},
    {"Round(1.5, 23)", "!5"},
    {"Hex(-1)", "'FFFF'"},
    {"Hex(CLng(-1))", "'FFFFFFFF'"},
    {"Hex(2147483648)", "!6"},
    {"Oct(65535)", "'177777'"},
    {"RGB(256, 0, 0)", "Long:255"},
    {"RGB(-1, 0, 0)", "!5"},
    {"FormatNumber(0.125, 2)", "'0.13'"},
    {"FormatNumber(1, 256)", "!5"},
    {"Split(\"a,b,c\", \",\", 2)(1)", "'b%2Cc'"},
    {"Split(\"a,b,c\", \",\", -2)(0)", "!5"},
    {"UBound(Split(\"\", \",\"))", "Long:-1"},
    {"UBound(Split(\"a\", \"\"))", "Long:0"},
    {"UBound(Array())", "Long:-1"},
    {"UBound(list, 0)", "!9"},
    {"UBound(list, 2)", "!9"},
    {"Join(Array(), \"x\")", "''"},
    {"UBound(Filter(Array(\"a\", \"b\"), \"z\"))", "Long:-1"},
    {"Replace(\"aaa\", \"a\", \"b\", 2)", "'bb'"},
    {"Replace(\"aaa\", \"a\", \"b\", 4)", "''"},
    {"Replace(\"aaa\", \"a\", \"b\", 1, 0)", "'aaa'"},
    {"Replace(\"aaa\", \"a\", \"b\", 0)", "!5"},
    {"Replace(\"aAa\", \"a\", \"b\", 1, -1, 1)", "'bbb'"},
    {"StrComp(\"a\", \"B\", 1)", "Integer:-1"},
    {"StrComp(\"a\", \"B\", 0)", "Integer:1"},
    {"StrComp(\"a\", \"b\", 3)", "!5"},
    {"Asc(ChrW(8364))", "Integer:128"},
    {"AscW(ChrW(8364))", "Integer:8364"},
    {"LenB(\"\")", "Long:0"},
    {"LenB(MidB(\"ab\", 2, 2))", "Long:2"},
    {"AscB(MidB(\"ab\", 2, 1))", "Byte:0"},
    {"Unescape(\"%u20AC%zz%4\")", "'%u20AC%25zz%254'"},
};

TEST(BuiltinAnswersTest, AtTheEdgesOfTheirRange) {
  std::string script = preparation;
  for (const Answer& edge : edges) {
    script += std::string("Err.Clear : a = \"\" : a = told(") + edge.call +
              ") : If Err.Number <> 0 Then a = \"!\" & Err.Number\nWScript.Echo a\n";
  }
  const std::vector<std::string> answers = output_of(script);
  ASSERT_EQ(answers.size(), std::size(edges)) << answers.back();
  for (std::size_t i = 0; i < std::size(edges); ++i) EXPECT_EQ(answers[i], edges[i].answer) << edges[i].call;
}

}  // namespace
}  // namespace zrl::vbs::test
