#include <algorithm>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/text_search.h"

// The byte variants of the string functions. A string of units is read as bytes, the low one first; an
// odd last byte takes a unit of its own.
namespace zrl::vbs {

namespace {

Value text_of(Machine& machine, std::string_view bytes) {
  Ref<String> text = machine.heap.byte_string(bytes.size());
  std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(text->units()));
  return Value(std::move(text));
}

std::size_t length_argument(Machine& machine, const Value& value) {
  const std::int64_t length = to_long(machine, value);
  if (length < 0) raise(error::invalid_call);
  return static_cast<std::size_t>(length);
}

Value len_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  return Value::long_integer(static_cast<std::int64_t>(to_string(machine, arguments[0])->byte_length()));
}

Value left_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const Ref<String> text = to_string(machine, arguments[0]);
  const std::string_view bytes = text->bytes();
  return text_of(machine, bytes.substr(0, length_argument(machine, arguments[1])));
}

Value right_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const Ref<String> text = to_string(machine, arguments[0]);
  const std::string_view bytes = text->bytes();
  const std::size_t length = std::min(bytes.size(), length_argument(machine, arguments[1]));
  return text_of(machine, bytes.substr(bytes.size() - length));
}

Value mid_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const Ref<String> text = to_string(machine, arguments[0]);
  const std::string_view bytes = text->bytes();
  const std::int64_t start = to_long(machine, arguments[1]);
  if (start < 1) raise(error::invalid_call);
  const std::size_t length = arguments.has(2) ? length_argument(machine, arguments[2]) : bytes.size();
  const std::size_t from = std::min(bytes.size(), static_cast<std::size_t>(start - 1));
  return text_of(machine, bytes.substr(from, length));
}

Value in_str_b(Machine& machine, Arguments arguments) {
  const bool with_start = arguments.size() > 2;
  const std::size_t first = with_start ? 1 : 0;
  if (arguments[first].is(Type::null) || arguments[first + 1].is(Type::null)) return Value::null();
  const std::int64_t start = with_start ? to_long(machine, arguments[0]) : 1;
  if (start < 1) raise(error::invalid_call);
  const Ref<String> text = to_string(machine, arguments[first]);
  const Ref<String> needle = to_string(machine, arguments[first + 1]);
  const auto from = static_cast<std::size_t>(start - 1);
  if (from >= text->byte_length()) return Value::long_integer(0);
  if (needle->byte_length() == 0) return Value::long_integer(start);
  const std::size_t found = find_bytes(machine.heap, text->bytes(), needle->bytes(), from);
  return Value::long_integer(found == std::string_view::npos ? 0 : static_cast<std::int64_t>(found + 1));
}

Value asc_b(Machine& machine, Arguments arguments) {
  const Text text(machine, arguments[0]);
  if (text.view().empty()) raise(error::invalid_call);
  return Value::of(Type::byte, std::int64_t{text.view()[0] & 0xff});
}

Value chr_b(Machine& machine, Arguments arguments) {
  const char byte = static_cast<char>(round_to(to_number(machine, arguments[0]), 0, 255));
  return text_of(machine, {&byte, 1});
}

constexpr Builtin functions[] = {
    {"LenB", 1, 1, len_b},      {"LeftB", 2, 2, left_b}, {"RightB", 2, 2, right_b}, {"MidB", 2, 3, mid_b},
    {"InStrB", 2, 4, in_str_b}, {"AscB", 1, 1, asc_b},   {"ChrB", 1, 1, chr_b},
};

}  // namespace

std::span<const Builtin> byte_functions() {
  return functions;
}

}  // namespace zrl::vbs
