#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scripting/vbscript/script_support.h"

// Results by pair of sub-types, as tables: rows are left operands, columns right ones.
namespace zrl::vbs::test {
namespace {

constexpr const char* names[] = {"Empty", "Null", "Bool", "Byte", "Int", "Long",
                                 "Sngl",  "Dbl",  "Cur",  "Date", "Str"};
constexpr const char* values[] = {"Empty",   "Null",    "True",    "CByte(3)", "3",    "CLng(3)",
                                  "CSng(3)", "CDbl(3)", "CCur(3)", "CDate(3)", "\"3\""};

// One letter a sub-type: e n b y i l s d c t S; x is error 13.
std::string table_of(const std::string& op) {
  std::string script =
      "Function k(v)\nk = Mid(\"enilsdctSo.b\", VarType(v) + 1, 1)\n"
      "If VarType(v) = 17 Then k = \"y\"\nEnd Function\nOn Error Resume Next\n";
  for (const char* left : values) {
    script += "line = \"\"\n";
    for (const char* right : values) {
      script += "a = " + std::string(left) + " : b = " + right + "\nErr.Clear : r = a " + op +
                " b\nIf Err.Number <> 0 Then line = line & \"x\" Else line = line & k(r)\n";
    }
    script += "WScript.Echo line\n";
  }
  std::string table;
  for (const std::string& line : output_of(script)) table += line + "\n";
  return table;
}

//                     E N B y i l s d c t S
constexpr const char* sums =
    /* Empty  */
    "iniyilsdctS\n"
    /* Null   */
    "nnnnnnnnnnn\n"
    /* Bool   */
    "iniiilsdctd\n"
    /* Byte   */
    "yniyilsdctd\n"
    /* Int    */
    "iniiilsdctd\n"
    /* Long   */
    "lnllllddctd\n"
    /* Single */
    "snsssdsdctd\n"
    /* Double */
    "dnddddddctd\n"
    /* Curr.  */
    "cnccccccctc\n"
    /* Date   */
    "tntttttttt"
    "t\n"
    /* String */
    "Sndddddd"
    "ctS\n";

TEST(TablesTest, Sums) {
  EXPECT_EQ(table_of("+"), sums);
}

TEST(TablesTest, Quotients) {
  // By Empty is by zero: an error; so is nothing else.
  std::istringstream lines(table_of("/"));
  std::string line;
  for (int row = 0; std::getline(lines, line); ++row) {
    for (std::size_t column = 0; column < line.size(); ++column) {
      const bool null = row == 1 || column == 1;
      const bool narrow = (row == 0 || row == 2 || row == 3 || row == 4 || row == 6) &&
                          (column == 2 || column == 3 || column == 4 || column == 6) &&
                          (row == 6 || column == 6);
      const char expected = null ? 'n' : column == 0 ? 'x' : narrow ? 's' : 'd';
      EXPECT_EQ(line[column], expected) << names[row] << " / " << names[column];
    }
  }
}

TEST(TablesTest, WholeQuotientsAndLogic) {
  const auto expected = [](int row, int column, bool logic) {
    if (row == 1 || column == 1) return 'n';
    const auto rank = [&](int i) {
      return i == 2 ? (logic ? 0 : 2) : i == 3 ? 1 : i == 4 ? 2 : i == 0 && !logic ? 2 : 3;
    };
    const int a = rank(row);
    const int b = rank(column);
    if (logic && a != b && std::max(a, b) < 3) return 'i';
    return "byil"[std::max(a, b)];
  };
  for (const char* op : {"\\", "And"}) {
    const bool logic = op[0] == 'A';
    std::istringstream lines(table_of(op));
    std::string line;
    for (int row = 0; std::getline(lines, line); ++row) {
      for (int column = 0; column < static_cast<int>(line.size()); ++column) {
        char want = expected(row, column, logic);
        if (!logic && column == 0 && row != 1) want = 'x';
        // False (Empty's bits) decides alone.
        if (logic && (row == 1) != (column == 1) && (row == 0 || column == 0)) want = 'l';
        EXPECT_EQ(line[static_cast<std::size_t>(column)], want)
            << names[row] << ' ' << op << ' ' << names[column];
      }
    }
  }
}

// What conversions make of values, or the error that they raise.
struct Conversion {
  const char* expression;
  const char* result;
};

TEST(TablesTest, Conversions) {
  const Conversion cases[] = {
      {"CInt(\" 12 \")", "Integer 12"},
      {"CInt(\"1.5\")", "Integer 2"},
      {"CInt(0.5)", "Integer 0"},
      {"CInt(-1.5)", "Integer -2"},
      {"CInt(32768)", "error 6"},
      {"CInt(\"\")", "error 13"},
      {"CInt(\"1 2\")", "error 13"},
      {"CLng(2147483647.4)", "Long 2147483647"},
      {"CLng(2147483647.5)", "error 6"},
      {"CLng(True)", "Long -1"},
      {"CByte(\"255\")", "Byte 255"},
      {"CByte(-1)", "error 6"},
      {"CBool(\"True\")", "Boolean True"},
      {"CBool(\"0.0\")", "Boolean False"},
      {"CBool(\"yes\")", "error 13"},
      {"CBool(Empty)", "Boolean False"},
      {"CDbl(\"1e3\")", "Double 1000"},
      {"CDbl(\"&HFF\")", "Double 255"},
      {"CDbl(\"1,2,3\")", "Double 123"},
      {"CDbl(\"$5\")", "Double 5"},
      {"CDbl(\"(5)\")", "Double -5"},
      {"CDbl(\"1e999\")", "error 6"},
      {"CSng(1e39)", "error 6"},
      {"CCur(1.23456)", "Currency 1.2346"},
      {"CCur(1e15)", "error 6"},
      {"CStr(True)", "String True"},
      {"CStr(Null)", "error 94"},
      {"CStr(Array())", "error 13"},
      {"CDate(\"nonsense\")", "error 13"},
      {"CDate(3000000)", "error 6"},
      {"CStr(1e-10)", "String 0.0000000001"},
      {"CStr(-0.0)", "String 0"},
      {"CStr(123456789.123456789)", "String 123456789.123457"},
      {"CStr(CSng(16777216))", "String 1.677722E+07"},
      {"CStr(1e100)", "String 1E+100"},
      {"CStr(CCur(1234567890.12))", "String 1234567890.12"},
      {"Int(\"2.7\")", "Double 2"},
      {"Abs(\"-3\")", "Double 3"},
      {"Len(123)", "Long 3"},
      {"Not 5.4", "Long -6"},
      {"-True", "Integer 1"},
      {"Hex(\"255\")", "String FF"},
  };
  std::string script = "On Error Resume Next\n";
  for (const Conversion& test : cases) {
    script += "Err.Clear : r = Empty : r = " + std::string(test.expression) +
              "\nIf Err.Number <> 0 Then WScript.Echo \"error \" & Err.Number Else WScript.Echo TypeName(r) "
              "& \" \" & r\n";
  }
  const auto lines = output_of(script);
  ASSERT_EQ(lines.size(), std::size(cases));
  for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i], cases[i].result) << cases[i].expression;
}

}  // namespace
}  // namespace zrl::vbs::test
