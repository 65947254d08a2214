#include <algorithm>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/text_search.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

const Array& array_argument(const Value& value) {
  if (!value.is(Type::array)) raise(error::type_mismatch);
  return *value.array();
}

// One dimension.
const Array& list_argument(const Value& value) {
  const Array& array = array_argument(value);
  if (array.dimensions > 1) raise(error::type_mismatch);
  return array;
}

bool ignores_case(Machine& machine, Arguments arguments, std::size_t i) {
  if (!arguments.has(i)) return false;
  const std::int64_t mode = to_long(machine, arguments[i]);
  if (mode != 0 && mode != 1) raise(error::invalid_call);
  return mode == 1;
}

Value list_of(Machine& machine, const std::vector<std::u16string_view>& texts) {
  Ref<Array> list = make_list(machine.heap, texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) list->elements[i] = Value(machine.heap.string(texts[i]));
  return Value(std::move(list));
}

Value array(Machine& machine, Arguments arguments) {
  Ref<Array> list = make_list(machine.heap, arguments.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) list->elements[i] = Value(arguments[i]);
  return Value(std::move(list));
}

std::int64_t dimension_argument(Machine& machine, Arguments arguments) {
  return arguments.has(1) ? to_long(machine, arguments[1]) : 1;
}

Value u_bound(Machine& machine, Arguments arguments) {
  return Value::long_integer(
      upper_bound(array_argument(arguments[0]), dimension_argument(machine, arguments)));
}

Value l_bound(Machine& machine, Arguments arguments) {
  upper_bound(array_argument(arguments[0]), dimension_argument(machine, arguments));
  return Value::long_integer(0);
}

Value join(Machine& machine, Arguments arguments) {
  // Default members of the elements may replace the argument.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const Value held = arguments[0];
  const Array& list = list_argument(held);
  const Value blank{machine.heap.unit_string(u' ')};
  const Text separator(machine, arguments.has(1) ? arguments[1] : blank);
  std::vector<Ref<String>> texts;
  texts.reserve(list.count);
  std::size_t length = list.count > 0 ? (list.count - 1) * separator.view().size() : 0;
  for (std::size_t i = 0; i < list.count; ++i) {
    texts.push_back(to_string(machine, list.elements[i]));
    length += texts.back()->length;
    if (i % 65536 == 65535) machine.check_time();
  }
  Ref<String> whole = machine.heap.blank_string(length);
  char16_t* next = whole->units();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (i > 0) next = std::copy(separator.view().begin(), separator.view().end(), next);
    next = std::copy_n(texts[i]->units(), texts[i]->length, next);
  }
  return Value(std::move(whole));
}

Value split(Machine& machine, Arguments arguments) {
  const Text whole(machine, arguments[0]);
  const Value blank{machine.heap.unit_string(u' ')};
  const Text separator(machine, arguments.has(1) ? arguments[1] : blank);
  const std::int64_t count = arguments.has(2) ? to_long(machine, arguments[2]) : -1;
  if (count < -1) raise(error::invalid_call);
  const bool ignoring_case = ignores_case(machine, arguments, 3);
  const std::u16string_view text = whole;
  if (text.empty() || count == 0) return list_of(machine, {});
  if (separator.view().empty()) return list_of(machine, {text});
  const std::u16string lower_text = ignoring_case ? lower_cased(text) : std::u16string();
  const std::u16string lower_separator = ignoring_case ? lower_cased(separator) : std::u16string();
  const std::u16string_view searched = ignoring_case ? lower_text : text;
  const std::u16string_view sought = ignoring_case ? std::u16string_view(lower_separator) : separator.view();
  std::vector<std::u16string_view> parts;
  std::size_t from = 0;
  while (count < 0 || parts.size() + 1 < static_cast<std::size_t>(count)) {
    const std::size_t found = find_text(searched, sought, from);
    if (found == text.npos) break;
    parts.push_back(text.substr(from, found - from));
    from = found + sought.size();
    if (parts.size() % 65536 == 0) machine.check_time();
  }
  parts.push_back(text.substr(from));
  return list_of(machine, parts);
}

Value filter(Machine& machine, Arguments arguments) {
  // Default members of the elements may replace the argument.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const Value held = arguments[0];
  const Array& list = list_argument(held);
  const Text sought(machine, arguments[1]);
  const bool include = !arguments.has(2) || to_boolean(machine, arguments[2]);
  const bool ignoring_case = ignores_case(machine, arguments, 3);
  const std::u16string needle = ignoring_case ? lower_cased(sought) : std::u16string(sought.view());
  std::vector<Ref<String>> kept;
  for (std::size_t i = 0; i < list.count; ++i) {
    Ref<String> text = to_string(machine, list.elements[i]);
    const std::size_t found =
        ignoring_case ? find_text(lower_cased(text->view()), needle, 0) : find_text(text->view(), needle, 0);
    if ((found != std::u16string::npos) == include) kept.push_back(std::move(text));
    if (i % 65536 == 65535) machine.check_time();
  }
  Ref<Array> result = make_list(machine.heap, kept.size());
  for (std::size_t i = 0; i < kept.size(); ++i) result->elements[i] = Value(std::move(kept[i]));
  return Value(std::move(result));
}

constexpr Builtin functions[] = {
    {"Array", 0, any_number, array}, {"UBound", 1, 2, u_bound},
    {"LBound", 1, 2, l_bound},       {"Join", 1, 2, join},
    {"Split", 1, 4, split},          {"Filter", 2, 4, filter},
};

}  // namespace

std::span<const Builtin> array_functions() {
  return functions;
}

}  // namespace zrl::vbs
