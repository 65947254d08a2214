#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The error numbers of the language and their texts.
namespace zrl::vbs {

namespace error {

// At run time.
inline constexpr std::int32_t invalid_call = 5;
inline constexpr std::int32_t overflow = 6;
inline constexpr std::int32_t out_of_memory = 7;
inline constexpr std::int32_t subscript = 9;
inline constexpr std::int32_t array_locked = 10;
inline constexpr std::int32_t division_by_zero = 11;
inline constexpr std::int32_t type_mismatch = 13;
inline constexpr std::int32_t string_space = 14;
inline constexpr std::int32_t cannot_perform = 17;  // a limit of the host's
inline constexpr std::int32_t stack_space = 28;
inline constexpr std::int32_t object_not_set = 91;
inline constexpr std::int32_t for_not_initialised = 92;
inline constexpr std::int32_t null_use = 94;
inline constexpr std::int32_t object_required = 424;
inline constexpr std::int32_t cannot_create = 429;
inline constexpr std::int32_t no_such_member = 438;
inline constexpr std::int32_t bad_locale = 447;
inline constexpr std::int32_t argument_count = 450;
inline constexpr std::int32_t not_a_collection = 451;
inline constexpr std::int32_t key_exists = 457;
inline constexpr std::int32_t undefined_variable = 500;
inline constexpr std::int32_t illegal_assignment = 501;
inline constexpr std::int32_t unqualified_reference = 505;
inline constexpr std::int32_t undefined_class = 506;
inline constexpr std::int32_t stopped = 507;  // by the time limit; nothing handles it
inline constexpr std::int32_t regexp_object_expected = 5016;
inline constexpr std::int32_t regexp_syntax = 5017;
inline constexpr std::int32_t element_not_found = 32811;

// When compiling.
inline constexpr std::int32_t syntax = 1002;
inline constexpr std::int32_t expected_open_parenthesis = 1005;
inline constexpr std::int32_t expected_close_parenthesis = 1006;
inline constexpr std::int32_t expected_close_bracket = 1007;
inline constexpr std::int32_t expected_identifier = 1010;
inline constexpr std::int32_t expected_equals = 1011;
inline constexpr std::int32_t expected_to = 1013;
inline constexpr std::int32_t expected_end = 1014;
inline constexpr std::int32_t expected_function = 1015;
inline constexpr std::int32_t expected_sub = 1016;
inline constexpr std::int32_t expected_then = 1017;
inline constexpr std::int32_t expected_wend = 1018;
inline constexpr std::int32_t expected_loop = 1019;
inline constexpr std::int32_t expected_next = 1020;
inline constexpr std::int32_t expected_case = 1021;
inline constexpr std::int32_t expected_select = 1022;
inline constexpr std::int32_t expected_expression = 1023;
inline constexpr std::int32_t expected_statement = 1024;
inline constexpr std::int32_t expected_end_of_statement = 1025;
inline constexpr std::int32_t expected_integer = 1026;
inline constexpr std::int32_t expected_loop_end = 1028;
inline constexpr std::int32_t expected_with = 1029;
inline constexpr std::int32_t identifier_too_long = 1030;
inline constexpr std::int32_t invalid_number = 1031;
inline constexpr std::int32_t invalid_character = 1032;
inline constexpr std::int32_t unterminated_string = 1033;
inline constexpr std::int32_t invalid_me = 1037;
inline constexpr std::int32_t loop_without_do = 1038;
inline constexpr std::int32_t invalid_exit = 1039;
inline constexpr std::int32_t invalid_for_variable = 1040;
inline constexpr std::int32_t name_redefined = 1041;
inline constexpr std::int32_t must_be_first = 1042;
inline constexpr std::int32_t no_parentheses = 1044;
inline constexpr std::int32_t expected_literal = 1045;
inline constexpr std::int32_t expected_in = 1046;
inline constexpr std::int32_t expected_class = 1047;
inline constexpr std::int32_t only_in_class = 1048;
inline constexpr std::int32_t expected_accessor = 1049;
inline constexpr std::int32_t expected_property = 1050;
inline constexpr std::int32_t inconsistent_arguments = 1051;
inline constexpr std::int32_t several_defaults = 1052;
inline constexpr std::int32_t class_event_arguments = 1053;
inline constexpr std::int32_t property_needs_argument = 1054;
inline constexpr std::int32_t unexpected_next = 1055;
inline constexpr std::int32_t misplaced_default = 1056;
inline constexpr std::int32_t default_not_public = 1057;
inline constexpr std::int32_t default_only_get = 1058;

}  // namespace error

// A line and a column, both from 1; columns count 16-bit units. Line 0: nowhere.
struct TextPlace {
  std::size_t line = 0;
  std::size_t column = 0;
};
TextPlace place_in(std::u16string_view text, std::size_t offset);

// A run-time error on its way through the engine.
struct Failure {
  std::int32_t number = 0;
  std::u16string description;
  std::u16string source;
  std::u16string help_file;
  std::int32_t help_context = 0;
  // What the text names, for the report of an error that nobody handled: a variable, a function.
  std::u16string subject;
  // What the report adds, for whoever reads it.
  std::u16string note;
  // In a text that Execute was to run and that did not compile.
  TextPlace inner;
  // Whether the script itself gave source and description: an error that it raises next without its own
  // has them too.
  bool own_source = false;
  bool own_description = false;
  // Nothing in a script can handle it: the limits of a call, and the end that a script asked for.
  bool final = false;
  bool quit = false;
};

// An error of compilation; the place is an offset into the text.
struct CompileFailure {
  std::int32_t number;
  std::size_t offset;
};

// The text of a number, or an empty one where the language has none.
std::string_view error_text(std::int32_t number);

// What a code of the system is in the language's numbers, or the code itself.
std::int32_t number_of_system_code(std::int32_t code);

[[noreturn]] void raise(std::int32_t number);
[[noreturn]] void raise(std::int32_t number, std::u16string subject);

}  // namespace zrl::vbs
