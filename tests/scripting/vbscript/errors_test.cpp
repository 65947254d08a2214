#include <gtest/gtest.h>

#include "scripting/vbscript/script_support.h"

// What is told of an error that ends a script, and where.
namespace zrl::vbs::test {
namespace {

struct Case {
  const char* script;
  const char* told;
};

void expect_all(std::initializer_list<Case> cases) {
  for (const Case& item : cases) {
    const std::vector<std::string> lines = output_of(item.script);
    EXPECT_EQ(lines.empty() ? "" : lines.back(), item.told) << item.script;
  }
}

TEST(ErrorsTest, NameTheSubjectAsTheTextWritesIt) {
  expect_all({
      {"Dim x : x.foo", "error 424 (1, 9): Object required: 'x'"},
      {"x.foo.bar 1", "error 424 (1, 1): Object required: 'x'"},
      {"Set x = Nothing : y = x.foo", "error 424 (1, 19): Object required: 'x'"},
      {"Set d = CreateObject(\"Scripting.Dictionary\")\nd.Item(d.Item(1)).foo = 2",
       "error 424 (2, 1): Object required: 'd.Item(...)'"},
      {"Set r = New RegExp : r.Nope",
       "error 438 (1, 22): Object doesn't support this property or method: 'r.Nope'"},
      {"y = 5 : Set x = y", "error 424 (1, 9): Object required: 'y'"},
      {"Set x = \"a\"", "error 424 (1, 1): Object required: '[string: \"a\"]'"},
      {"Dim a(2) : a(3) = 1", "error 9 (1, 12): Subscript out of range: '[number: 3]'"},
      {"Dim a(2) : i = 3 : x = a(i)", "error 9 (1, 20): Subscript out of range: 'i'"},
      {"x = 5 : y = x(1)", "error 13 (1, 9): Type mismatch: 'x'"},
      {"x = FormatNumber(Null)", "error 13 (1, 1): Type mismatch: 'FormatNumber'"},
      // Inside of executed text, which is gone when the error is told.
      {"x = 1\nExecute \"y = 1\" & vbLf & \" q.z = 2\"",
       "error 424 (2, 1): Object required: 'q' (line 2, column 2 of the executed text)"},
  });
}

TEST(ErrorsTest, TheFirstErrorOfATextIsTold) {
  expect_all({
      {"x = \ny = \"unterminated", "compile error 1023 (1, 5): Expected expression"},
      {"x = 1 @", "compile error 1032 (1, 7): Invalid character"},
      {"<!-- x", "compile error 1024 (1, 1): Expected statement"},
      {"x = 1e", "compile error 1031 (1, 5): Invalid number"},
      {"x = 5abc", "compile error 1025 (1, 6): Expected end of statement"},
      {"Class C\nEnd Class\nDim C", "compile error 1041 (3, 5): Name redefined"},
      {"Class C\nPublic Property x\nEnd Property\nEnd Class",
       "compile error 1049 (2, 17): Expected Let or Set or Get in property declaration"},
      {"Class C\nPublic Default x\nEnd Class",
       "compile error 1056 (2, 16): 'Default' can be specified only with 'Property' or 'Function' or 'Sub'"},
      {"Const x = 1 + 2", "compile error 1025 (1, 13): Expected end of statement"},
      {"ReDim a.b(3)", "compile error 1005 (1, 8): Expected '('"},
      {"Set Me = x", "compile error 1037 (1, 5): Invalid use of 'Me' keyword"},
  });
}

TEST(ErrorsTest, NamesAndWhatIsNotClosedAreToldAtTheirPlace) {
  const std::string long_name(256, 'x');
  expect_all({
      // What word processors put into scripts.
      {"If InStr(1, body, “viagra”, 1) > 0 Then x = 1", "compile error 1032 (1, 19): Invalid character"},
      {"x – 1", "compile error 1032 (1, 3): Invalid character"},
      {"x = 5€", "compile error 1032 (1, 6): Invalid character"},
      {"größe = 1", "compile error 1032 (1, 3): Invalid character"},
      {"x = “a", "compile error 1032 (1, 5): Invalid character"},
      {"Dim x\nDim y, x", "compile error 1041 (2, 8): Name redefined"},
      {"Sub I\nEnd Sub\nConst I = 1", "compile error 1041 (3, 7): Name redefined"},
      {"Dim f\nFunction f : End Function", "compile error 1041 (2, 10): Name redefined"},
      {"Class C\nPublic x\nPublic Sub x\nEnd Sub\nEnd Class", "compile error 1041 (3, 12): Name redefined"},
      {"Sub f(a, a)\nEnd Sub", "compile error 1041 (1, 10): Name redefined"},
      {"x = 1 : Exit Do", "compile error 1039 (1, 14): Invalid 'exit' statement"},
      {"While x\nExit Do\nWend", "compile error 1039 (2, 6): Invalid 'exit' statement"},
      {"Sub f\nExit Function\nEnd Sub", "compile error 1039 (2, 6): Invalid 'exit' statement"},
      {"Property Get x\nEnd Property", "compile error 1048 (1, 14): Must be defined inside a Class"},
      {"Public Property Get x\nEnd Property", "compile error 1048 (1, 21): Must be defined inside a Class"},
      {"Class C\nSub Class_Initialize(x)\nEnd Sub\nEnd Class",
       "compile error 1053 (2, 5): Class initialize or terminate do not have arguments"},
      {"For a.b = 1 To 2\nNext", "compile error 1040 (1, 5): Invalid 'for' loop control variable"},
      {"For Each a(1) In b\nNext", "compile error 1040 (1, 10): Invalid 'for' loop control variable"},
      {"Class C\nProperty Get p(a)\nEnd Property\nProperty Let p(v)\nEnd Property\nEnd Class",
       "compile error 1051 (4, 14): Number of arguments must be consistent across properties specification"},
      {"x = \"abc", "compile error 1033 (1, 9): Unterminated string constant"},
      {"x = [abc\ny = 1", "compile error 1007 (1, 9): Expected ']'"},
      {"Const x = 1 + \"a\"", "compile error 1045 (1, 15): Expected literal constant"},
      {"Sub x)\nEnd Sub", "compile error 1005 (1, 6): Expected '('"},
      {"If x Then\ny = 3 End If", "compile error 1042 (2, 7): Must be first statement on the line"},
      {"Select Case x\nCase 1\ny = 3 End Select",
       "compile error 1042 (3, 7): Must be first statement on the line"},
      {"x = 1e999", "compile error 1031 (1, 5): Invalid number"},
  });
  EXPECT_EQ(output_of(long_name + " = 1").back(), "compile error 1030 (1, 257): Identifier too long");
  EXPECT_EQ(output_of("[" + long_name + "] = 1").back(), "compile error 1030 (1, 258): Identifier too long");
}

TEST(ErrorsTest, ExecutedTextsAreToldAtTheStatementThatRunsThem) {
  expect_all({
      {"x = 1\n  Execute \"y = 1\" & vbLf & \"z = 1 / 0\"",
       "error 11 (2, 3): Division by zero (line 2, column 1 of the executed text)"},
      {"x = 1\nExecuteGlobal \"Sub f\" & vbLf & \"CInt \"\"a\"\"\" & vbLf & \"End Sub\"\nf",
       "error 13 (2, 1): Type mismatch: 'CInt' (line 2, column 1 of the executed text)"},
      {"x = 1\ny = Eval(\"1 + 1 / 0\")",
       "error 11 (2, 1): Division by zero (line 1, column 1 of the executed text)"},
      {"x = 1\nExecute \"y = (\"",
       "compile error 1023 (2, 1): Expected expression (line 1, column 6 of the executed text)"},
      {"Execute \"Execute \"\"x = 1 / 0\"\"\"",
       "error 11 (1, 1): Division by zero (line 1, column 1 of the executed text)"},
  });
}

TEST(ErrorsTest, ForeignObjectsAreRefusedWithAReason) {
  expect_all({
      {"Set x = CreateObject(\"Foreign.Thing\")",
       "error 429 (1, 1): ActiveX component can't create object: 'Foreign.Thing' (scripts reach nothing "
       "outside "
       "of the console, by design)"},
  });
}

}  // namespace
}  // namespace zrl::vbs::test
