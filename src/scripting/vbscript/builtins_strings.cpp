#include <algorithm>

#include "core/text/character_sets.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/text_search.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

Value text_value(Machine& machine, std::u16string_view text) {
  return Value(text.size() == 1 ? machine.heap.unit_string(text[0]) : machine.heap.string(text));
}

// A value, never an object.
Value scalar(Machine& machine, const Value& value) {
  return value.is(Type::object) ? machine.default_value(value) : value;
}

std::size_t length_argument(Machine& machine, const Value& value) {
  const std::int64_t length = to_long(machine, value);
  if (length < 0) raise(error::invalid_call);
  return static_cast<std::size_t>(length);
}

Value len(Machine& machine, Arguments arguments) {
  Value value = scalar(machine, arguments[0]);
  if (value.is(Type::null)) return value;
  const Ref<String> text = to_string(machine, value);
  return Value::long_integer(std::int64_t{text->length} - (text->odd != 0 ? 1 : 0));
}

Value left(Machine& machine, Arguments arguments) {
  Value value = scalar(machine, arguments[0]);
  const std::size_t length = length_argument(machine, arguments[1]);
  if (value.is(Type::null)) return value;
  const Text text(machine, value);
  if (length >= text.view().size() && value.is(Type::string)) return value;
  return text_value(machine, text.view().substr(0, length));
}

Value right(Machine& machine, Arguments arguments) {
  Value value = scalar(machine, arguments[0]);
  const std::size_t length = length_argument(machine, arguments[1]);
  if (value.is(Type::null)) return value;
  const Text text(machine, value);
  const std::size_t size = text.view().size();
  return text_value(machine, text.view().substr(size - std::min(length, size)));
}

Value mid(Machine& machine, Arguments arguments) {
  Value value = scalar(machine, arguments[0]);
  const std::int64_t start = to_long(machine, arguments[1]);
  if (start < 1) raise(error::invalid_call);
  std::size_t length = std::u16string_view::npos;
  if (arguments.has(2)) length = length_argument(machine, arguments[2]);
  if (value.is(Type::null)) return value;
  const Text text(machine, value);
  const auto from = static_cast<std::size_t>(start - 1);
  if (from >= text.view().size()) return Value(machine.heap.empty_string());
  return text_value(machine, text.view().substr(from, length));
}

Value in_str(Machine& machine, Arguments arguments) {
  const bool with_start = arguments.size() > 2;
  const std::size_t first = with_start ? 1 : 0;
  const Value text_argument = scalar(machine, arguments[first]);
  const Value needle_argument = scalar(machine, arguments[first + 1]);
  std::int64_t start = 1;
  if (with_start) {
    if (arguments[0].is(Type::null)) raise(error::null_use);
    if (arguments.has(0)) start = to_long(machine, arguments[0]);
  }
  if (start < 1) raise(error::invalid_call);
  const bool ignoring_case = ignores_case(machine, arguments, 3);
  if (text_argument.is(Type::null) || needle_argument.is(Type::null)) return Value::null();
  const Text text(machine, text_argument);
  const Text needle(machine, needle_argument);
  const auto from = static_cast<std::size_t>(start - 1);
  if (text.view().empty() || from >= text.view().size()) return Value::long_integer(0);
  if (needle.view().empty()) return Value::long_integer(start);
  const std::size_t found =
      ignoring_case ? find_text(machine.heap, lower_text(machine, text), lower_text(machine, needle), from)
                    : find_text(machine.heap, text, needle, from);
  return Value::long_integer(found == std::u16string_view::npos ? 0 : static_cast<std::int64_t>(found + 1));
}

Value in_str_rev(Machine& machine, Arguments arguments) {
  const Value text_argument = scalar(machine, arguments[0]);
  const Value needle_argument = scalar(machine, arguments[1]);
  std::int64_t start = arguments.has(2) ? to_long(machine, arguments[2]) : -1;
  if (start == 0 || start < -1) raise(error::invalid_call);
  const bool ignoring_case = ignores_case(machine, arguments, 3);
  if (text_argument.is(Type::null) || needle_argument.is(Type::null)) return Value::null();
  const Text text(machine, text_argument);
  const Text needle(machine, needle_argument);
  const auto size = static_cast<std::int64_t>(text.view().size());
  if (start == -1) start = size;
  if (text.view().empty() || start > size) return Value::long_integer(0);
  if (needle.view().empty()) return Value::long_integer(start);
  const auto length = static_cast<std::int64_t>(needle.view().size());
  if (length > start) return Value::long_integer(0);
  const auto last = static_cast<std::size_t>(start - length);
  const std::size_t found = ignoring_case ? find_last_text(machine.heap, lower_text(machine, text),
                                                           lower_text(machine, needle), last)
                                          : find_last_text(machine.heap, text, needle, last);
  return Value::long_integer(found == std::u16string_view::npos ? 0 : static_cast<std::int64_t>(found + 1));
}

template <char16_t (*mapped)(char16_t)>
Value case_mapped(Machine& machine, Arguments arguments) {
  Value value = scalar(machine, arguments[0]);
  if (value.is(Type::null)) return value;
  const Text text(machine, value);
  Ref<String> result = machine.heap.blank_string(text.view().size());
  std::transform(text.view().begin(), text.view().end(), result->units(), mapped);
  return Value(std::move(result));
}

template <bool from_left, bool from_right>
Value trim(Machine& machine, Arguments arguments) {
  Value value = scalar(machine, arguments[0]);
  if (value.is(Type::null)) return value;
  const Text text(machine, value);
  std::u16string_view rest = text;
  while (from_left && !rest.empty() && rest.front() == u' ') rest.remove_prefix(1);
  while (from_right && !rest.empty() && rest.back() == u' ') rest.remove_suffix(1);
  if (rest.size() == text.view().size() && value.is(Type::string)) return value;
  return text_value(machine, rest);
}

// Walks over the places of `find` in `text`, at most `most` of them.
template <class Action>
void for_each_place(Machine& machine, std::u16string_view text, std::u16string_view find, std::size_t most,
                    Action action) {
  std::size_t from = 0;
  for (std::size_t places = 0; places < most; ++places) {
    const std::size_t found = find_text(machine.heap, text, find, from);
    if (found == text.npos) return;
    action(found);
    machine.heap.work(found + find.size() - from);
    from = found + find.size();
  }
}

Value replace(Machine& machine, Arguments arguments) {
  const Text whole(machine, arguments[0]);
  const Text find(machine, arguments[1]);
  const Text with(machine, arguments[2]);
  const std::int64_t start = arguments.has(3) ? to_long(machine, arguments[3]) : 1;
  const std::int64_t count = arguments.has(4) ? to_long(machine, arguments[4]) : -1;
  if (start < 1 || count < -1) raise(error::invalid_call);
  const bool ignoring_case = ignores_case(machine, arguments, 5);
  const std::u16string_view text =
      whole.view().substr(std::min(static_cast<std::size_t>(start - 1), whole.view().size()));
  if (find.view().empty() || count == 0) return text_value(machine, text);
  const auto most = count < 0 ? text.npos : static_cast<std::size_t>(count);
  const HeapText lower_whole = lower_text(machine, ignoring_case ? text : std::u16string_view());
  const HeapText lower_find = lower_text(machine, find);
  const std::u16string_view searched = ignoring_case ? std::u16string_view(lower_whole) : text;
  const std::u16string_view sought = ignoring_case ? std::u16string_view(lower_find) : find.view();
  // Counted first, so that nothing but the result takes memory.
  std::size_t places = 0;
  for_each_place(machine, searched, sought, most, [&](std::size_t) { ++places; });
  if (places == 0) return text_value(machine, text);
  const std::size_t kept = text.size() - places * find.view().size();
  if (!with.view().empty() && places > machine.heap.string_limit() / with.view().size()) {
    raise(error::string_space);
  }
  Ref<String> result = machine.heap.blank_string(kept + places * with.view().size());
  char16_t* next = result->units();
  const char16_t* copied = text.data();
  for_each_place(machine, searched, sought, most, [&](std::size_t place) {
    next = std::copy(copied, text.data() + place, next);
    next = std::copy(with.view().begin(), with.view().end(), next);
    copied = text.data() + place + find.view().size();
  });
  std::copy(copied, text.data() + text.size(), next);
  return Value(std::move(result));
}

Value filled(Machine& machine, std::size_t length, char16_t unit) {
  Ref<String> result = machine.heap.blank_string(length);
  std::fill_n(result->units(), length, unit);
  return Value(std::move(result));
}

Value space(Machine& machine, Arguments arguments) {
  return filled(machine, length_argument(machine, arguments[0]), u' ');
}

Value string(Machine& machine, Arguments arguments) {
  Value what = scalar(machine, arguments[1]);
  const std::size_t length = length_argument(machine, arguments[0]);
  if (what.is(Type::null)) return what;
  if (what.is(Type::string)) {
    if (what.text().empty()) raise(error::invalid_call);
    return filled(machine, length, what.text()[0]);
  }
  const std::int64_t code = to_long(machine, what);
  return filled(machine, length, windows_1252_character(static_cast<unsigned char>(code & 0xff)));
}

Value str_comp(Machine& machine, Arguments arguments) {
  const Value a = scalar(machine, arguments[0]);
  const Value b = scalar(machine, arguments[1]);
  const bool ignoring_case = ignores_case(machine, arguments, 2);
  if (a.is(Type::null) || b.is(Type::null)) return Value::null();
  const Text x(machine, a);
  const Text y(machine, b);
  const int order = ignoring_case ? compare_ignoring_case(x, y) : x.view().compare(y.view());
  return Value::integer(order < 0 ? -1 : order > 0 ? 1 : 0);
}

Value str_reverse(Machine& machine, Arguments arguments) {
  const Text text(machine, arguments[0]);
  Ref<String> result = machine.heap.blank_string(text.view().size());
  std::reverse_copy(text.view().begin(), text.view().end(), result->units());
  return Value(std::move(result));
}

Value asc(Machine& machine, Arguments arguments) {
  const Text text(machine, arguments[0]);
  if (text.view().empty()) raise(error::invalid_call);
  return Value::integer(windows_1252_byte(text.view()[0]).value_or('?'));
}

Value asc_w(Machine& machine, Arguments arguments) {
  const Text text(machine, arguments[0]);
  if (text.view().empty()) raise(error::invalid_call);
  return Value::integer(static_cast<std::int16_t>(text.view()[0]));
}

Value chr(Machine& machine, Arguments arguments) {
  const std::int64_t code = to_long(machine, arguments[0]);
  if (code < 0 || code > 255) raise(error::invalid_call);
  return Value(machine.heap.unit_string(windows_1252_character(static_cast<unsigned char>(code))));
}

Value chr_w(Machine& machine, Arguments arguments) {
  const std::int64_t code = to_long(machine, arguments[0]);
  if (code < -32768 || code > 65535) raise(error::invalid_call);
  return Value(machine.heap.unit_string(static_cast<char16_t>(code & 0xffff)));
}

bool stays_as_it_is(char16_t unit) {
  return (unit < 0x80 && (is_digit(unit) || is_letter(unit))) ||
         std::u16string_view(u"*+-./@_").find(unit) != std::u16string_view::npos;
}

Value escape(Machine& machine, Arguments arguments) {
  const Value value = scalar(machine, arguments[0]);
  if (value.is(Type::null)) raise(error::null_use);
  const Text text(machine, value);
  constexpr char16_t digits[] = u"0123456789ABCDEF";
  HeapText result{HeapAllocator<char16_t>(machine.heap)};
  for (const char16_t unit : text.view()) {
    if (stays_as_it_is(unit)) {
      result += unit;
      continue;
    }
    result += unit > 0xff ? u"%u" : u"%";
    for (int shift = unit > 0xff ? 12 : 4; shift >= 0; shift -= 4) result += digits[unit >> shift & 15];
  }
  return Value(machine.heap.string(result));
}

// Reads `count` hexadecimal digits, or nothing.
bool hexadecimal(std::u16string_view text, std::size_t from, std::size_t count, char16_t& unit) {
  if (from + count > text.size()) return false;
  unsigned value = 0;
  for (std::size_t i = from; i < from + count; ++i) {
    const char16_t digit = to_lower(text[i]);
    const bool letter = digit >= u'a' && digit <= u'f';
    if (!is_digit(digit) && !letter) return false;
    value = value * 16 + static_cast<unsigned>(letter ? digit - u'a' + 10 : digit - u'0');
  }
  unit = static_cast<char16_t>(value);
  return true;
}

Value unescape(Machine& machine, Arguments arguments) {
  const Value value = scalar(machine, arguments[0]);
  if (value.is(Type::null)) raise(error::null_use);
  const Text whole(machine, value);
  const std::u16string_view text = whole;
  HeapText result{HeapAllocator<char16_t>(machine.heap)};
  for (std::size_t i = 0; i < text.size(); ++i) {
    char16_t unit = text[i];
    if (unit == u'%' && i + 1 < text.size() && text[i + 1] == u'u' && hexadecimal(text, i + 2, 4, unit)) {
      i += 5;
    } else if (unit == u'%' && hexadecimal(text, i + 1, 2, unit)) {
      i += 2;
    }
    result += unit;
  }
  return Value(machine.heap.string(result));
}

constexpr Builtin functions[] = {
    {"Len", 1, 1, len},
    {"Left", 2, 2, left},
    {"Right", 2, 2, right},
    {"Mid", 2, 3, mid},
    {"InStr", 2, 4, in_str},
    {"InStrRev", 2, 4, in_str_rev},
    {"LCase", 1, 1, case_mapped<to_lower>},
    {"UCase", 1, 1, case_mapped<to_upper>},
    {"LTrim", 1, 1, trim<true, false>},
    {"RTrim", 1, 1, trim<false, true>},
    {"Trim", 1, 1, trim<true, true>},
    {"Replace", 3, 6, replace},
    {"Space", 1, 1, space},
    {"String", 2, 2, string},
    {"StrComp", 2, 3, str_comp},
    {"StrReverse", 1, 1, str_reverse},
    {"Asc", 1, 1, asc},
    {"AscW", 1, 1, asc_w},
    {"Chr", 1, 1, chr},
    {"ChrW", 1, 1, chr_w},
    {"Escape", 1, 1, escape},
    {"Unescape", 1, 1, unescape},
};

}  // namespace

std::span<const Builtin> string_functions() {
  return functions;
}

}  // namespace zrl::vbs
