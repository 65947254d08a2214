#include <algorithm>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"

// The byte variants of the string functions. A string of units is read as bytes, the low one first; an
// odd last byte takes a unit of its own.
namespace zrl::vbs {

namespace {

std::string bytes_of(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xff);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

Value text_of(Machine& machine, std::string_view bytes) {
  Ref<String> text = machine.heap.blank_string((bytes.size() + 1) / 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(i + 1 < bytes.size() ? bytes[i + 1] : 0);
    text->units()[i / 2] = static_cast<char16_t>(low | high << 8);
  }
  return Value(std::move(text));
}

std::size_t length_argument(Machine& machine, const Value& value) {
  const std::int64_t length = to_long(machine, value);
  if (length < 0) raise(error::invalid_call);
  return static_cast<std::size_t>(length);
}

Value len_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  return Value::long_integer(static_cast<std::int64_t>(Text(machine, arguments[0]).view().size() * 2));
}

Value left_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const std::string bytes = bytes_of(Text(machine, arguments[0]));
  return text_of(machine, std::string_view(bytes).substr(0, length_argument(machine, arguments[1])));
}

Value right_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const std::string bytes = bytes_of(Text(machine, arguments[0]));
  const std::size_t length = std::min(bytes.size(), length_argument(machine, arguments[1]));
  return text_of(machine, std::string_view(bytes).substr(bytes.size() - length));
}

Value mid_b(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const std::string bytes = bytes_of(Text(machine, arguments[0]));
  const std::int64_t start = to_long(machine, arguments[1]);
  if (start < 1) raise(error::invalid_call);
  const std::size_t length = arguments.has(2) ? length_argument(machine, arguments[2]) : bytes.size();
  const std::size_t from = std::min(bytes.size(), static_cast<std::size_t>(start - 1));
  return text_of(machine, std::string_view(bytes).substr(from, length));
}

Value in_str_b(Machine& machine, Arguments arguments) {
  const bool with_start = arguments.size() > 2;
  const std::size_t first = with_start ? 1 : 0;
  if (arguments[first].is(Type::null) || arguments[first + 1].is(Type::null)) return Value::null();
  const std::int64_t start = with_start ? to_long(machine, arguments[0]) : 1;
  if (start < 1) raise(error::invalid_call);
  const std::string bytes = bytes_of(Text(machine, arguments[first]));
  const std::string needle = bytes_of(Text(machine, arguments[first + 1]));
  const auto from = static_cast<std::size_t>(start - 1);
  if (from >= bytes.size()) return Value::long_integer(0);
  if (needle.empty()) return Value::long_integer(start);
  machine.check_time();
  const auto found = std::search(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(),
                                 needle.begin(), needle.end());
  return Value::long_integer(found == bytes.end() ? 0 : found - bytes.begin() + 1);
}

Value asc_b(Machine& machine, Arguments arguments) {
  const Text text(machine, arguments[0]);
  if (text.view().empty()) raise(error::invalid_call);
  return Value::of(Type::byte, std::int64_t{text.view()[0] & 0xff});
}

Value chr_b(Machine& machine, Arguments arguments) {
  const std::int64_t code = to_long(machine, arguments[0]);
  if (code < 0 || code > 255) raise(error::invalid_call);
  const char byte = static_cast<char>(code);
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
