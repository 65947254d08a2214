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
      {"x = 1\nExecute \"y = 1\" & vbLf & \" q.z = 2\"", "error 424 (2, 1): Object required: 'q' (line 2, column 2 of the executed text)"},
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

}  // namespace
}  // namespace zrl::vbs::test
