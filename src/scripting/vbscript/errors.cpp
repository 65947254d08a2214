#include "scripting/vbscript/errors.h"

#include <algorithm>
#include <array>

#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

struct ErrorText {
  std::int32_t number;
  std::string_view text;
};

// Sorted by number.
constexpr ErrorText texts[] = {
    {5, "Invalid procedure call or argument"},
    {6, "Overflow"},
    {7, "Out of memory"},
    {9, "Subscript out of range"},
    {10, "This array is fixed or temporarily locked"},
    {11, "Division by zero"},
    {13, "Type mismatch"},
    {14, "Out of string space"},
    {17, "Can't perform requested operation"},
    {28, "Out of stack space"},
    {35, "Sub or Function not defined"},
    {48, "Error in loading DLL"},
    {51, "Internal error"},
    {52, "Bad file name or number"},
    {53, "File not found"},
    {54, "Bad file mode"},
    {55, "File already open"},
    {57, "Device I/O error"},
    {58, "File already exists"},
    {61, "Disk full"},
    {62, "Input past end of file"},
    {67, "Too many files"},
    {68, "Device unavailable"},
    {70, "Permission denied"},
    {71, "Disk not ready"},
    {74, "Can't rename with different drive"},
    {75, "Path/File access error"},
    {76, "Path not found"},
    {91, "Object variable not set"},
    {92, "For loop not initialized"},
    {93, "Invalid pattern string"},
    {94, "Invalid use of Null"},
    {322, "Can't create necessary temporary file"},
    {424, "Object required"},
    {429, "ActiveX component can't create object"},
    {430, "Class doesn't support Automation"},
    {432, "File name or class name not found during Automation operation"},
    {438, "Object doesn't support this property or method"},
    {440, "Automation error"},
    {445, "Object doesn't support this action"},
    {446, "Object doesn't support named arguments"},
    {447, "Object doesn't support current locale setting"},
    {448, "Named argument not found"},
    {449, "Argument not optional"},
    {450, "Wrong number of arguments or invalid property assignment"},
    {451, "Object not a collection"},
    {453, "Specified DLL function not found"},
    {455, "Code resource lock error"},
    {457, "This key is already associated with an element of this collection"},
    {458, "Variable uses an Automation type not supported in VBScript"},
    {462, "The remote server machine does not exist or is unavailable"},
    {481, "Invalid picture"},
    {500, "Variable is undefined"},
    {501, "Illegal assignment"},
    {502, "Object not safe for scripting"},
    {503, "Object not safe for initializing"},
    {504, "Object not safe for creating"},
    {505, "Invalid or unqualified reference"},
    {506, "Class not defined"},
    {507, "An exception occurred"},
    {1001, "Out of memory"},
    {1002, "Syntax error"},
    {1003, "Expected ':'"},
    {1005, "Expected '('"},
    {1006, "Expected ')'"},
    {1007, "Expected ']'"},
    {1010, "Expected identifier"},
    {1011, "Expected '='"},
    {1012, "Expected 'If'"},
    {1013, "Expected 'To'"},
    {1014, "Expected 'End'"},
    {1015, "Expected 'Function'"},
    {1016, "Expected 'Sub'"},
    {1017, "Expected 'Then'"},
    {1018, "Expected 'Wend'"},
    {1019, "Expected 'Loop'"},
    {1020, "Expected 'Next'"},
    {1021, "Expected 'Case'"},
    {1022, "Expected 'Select'"},
    {1023, "Expected expression"},
    {1024, "Expected statement"},
    {1025, "Expected end of statement"},
    {1026, "Expected integer constant"},
    {1027, "Expected 'While' or 'Until'"},
    {1028, "Expected 'While', 'Until' or end of statement"},
    {1029, "Expected 'With'"},
    {1030, "Identifier too long"},
    {1031, "Invalid number"},
    {1032, "Invalid character"},
    {1033, "Unterminated string constant"},
    {1034, "Unterminated comment"},
    {1037, "Invalid use of 'Me' keyword"},
    {1038, "'loop' without 'do'"},
    {1039, "Invalid 'exit' statement"},
    {1040, "Invalid 'for' loop control variable"},
    {1041, "Name redefined"},
    {1042, "Must be first statement on the line"},
    {1043, "Cannot assign to non-ByVal argument"},
    {1044, "Cannot use parentheses when calling a Sub"},
    {1045, "Expected literal constant"},
    {1046, "Expected 'In'"},
    {1047, "Expected 'Class'"},
    {1048, "Must be defined inside a Class"},
    {1049, "Expected Let or Set or Get in property declaration"},
    {1050, "Expected 'Property'"},
    {1051, "Number of arguments must be consistent across properties specification"},
    {1052, "Cannot have multiple default property/method in a Class"},
    {1053, "Class initialize or terminate do not have arguments"},
    {1054, "Property set or let must have at least one argument"},
    {1055, "Unexpected 'Next'"},
    {1056, "'Default' can be specified only with 'Property' or 'Function' or 'Sub'"},
    {1057, "'Default' specification must also specify 'Public'"},
    {1058, "'Default' specification can only be on Property Get"},
    {5016, "Regular Expression object expected"},
    {5017, "Syntax error in regular expression"},
    {5018, "Unexpected quantifier"},
    {5019, "Expected ']' in regular expression"},
    {5020, "Expected ')' in regular expression"},
    {5021, "Invalid range in character set"},
    {32811, "Element not found"},
};

}  // namespace

std::string_view error_text(std::int32_t number) {
  const auto* found = std::lower_bound(std::begin(texts), std::end(texts), number,
                                       [](const ErrorText& text, std::int32_t n) { return text.number < n; });
  return found != std::end(texts) && found->number == number ? found->text : std::string_view();
}

namespace {

struct SystemCode {
  std::uint32_t code;
  std::int32_t number;
};

// Sorted by code.
constexpr SystemCode system_codes[] = {
    {0x80004001, 445}, {0x80004002, 430}, {0x80020001, 438}, {0x80020003, 438}, {0x80020004, 448},
    {0x80020005, 13},  {0x80020006, 438}, {0x80020007, 446}, {0x80020008, 458}, {0x8002000A, 6},
    {0x8002000B, 9},   {0x8002000C, 447}, {0x8002000D, 10},  {0x8002000E, 450}, {0x8002000F, 449},
    {0x80020011, 451}, {0x80020012, 11},  {0x8002802F, 453}, {0x80028CA0, 13},  {0x80028CA1, 9},
    {0x80028CA2, 57},  {0x80028CA3, 322}, {0x80030002, 432}, {0x80030003, 76},  {0x80030004, 67},
    {0x80030005, 70},  {0x80030008, 7},   {0x80030012, 67},  {0x80030013, 70},  {0x8003001D, 57},
    {0x8003001E, 57},  {0x80030020, 75},  {0x80030021, 70},  {0x80030050, 58},  {0x80030070, 61},
    {0x800300FC, 53},  {0x80030100, 70},  {0x80030101, 70},  {0x80030103, 57},  {0x80040154, 429},
    {0x800401E3, 429}, {0x800401E6, 432}, {0x800401EA, 432}, {0x800401F3, 429}, {0x800401F5, 429},
    {0x800401FE, 429}, {0x80070005, 70},  {0x8007000E, 7},   {0x80070057, 5},   {0x800706BA, 462},
    {0x80080005, 429},
};

// Codes of this facility carry a number of the language.
constexpr std::uint32_t control_facility = 0x800A0000;

}  // namespace

std::int32_t number_of_system_code(std::int32_t code) {
  const auto bits = static_cast<std::uint32_t>(code);
  if ((bits & 0xffff0000U) == control_facility) return static_cast<std::int32_t>(bits & 0xffffU);
  const auto* found =
      std::lower_bound(std::begin(system_codes), std::end(system_codes), bits,
                       [](const SystemCode& known, std::uint32_t n) { return known.code < n; });
  return found != std::end(system_codes) && found->code == bits ? found->number : code;
}

TextPlace place_in(std::u16string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  TextPlace place{1, 1};
  std::size_t line_start = 0;
  for (std::size_t i = 0; i < offset; ++i) {
    const bool ends =
        text[i] == u'\n' || (text[i] == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n'));
    if (!ends) continue;
    ++place.line;
    line_start = i + 1;
  }
  place.column = offset - line_start + 1;
  return place;
}

void raise(std::int32_t number) {
  raise(number, {});
}

void raise(std::int32_t number, std::u16string subject) {
  Failure failure;
  failure.number = number;
  failure.description = to_utf16(error_text(number));
  failure.source = u"Microsoft VBScript runtime error";
  failure.subject = std::move(subject);
  throw failure;
}

}  // namespace zrl::vbs
