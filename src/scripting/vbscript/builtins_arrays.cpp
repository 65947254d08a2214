#include <algorithm>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/text_search.h"

namespace zrl::vbs {

namespace {

// The array that an argument is or has as its default value. Default members of its elements may replace
// the argument: the caller holds it.
Value array_argument(Machine& machine, const Value& value) {
  Value array = value.is(Type::object) ? machine.default_value(value) : value;
  if (!array.is(Type::array)) raise(error::type_mismatch);
  return array;
}

// One dimension; Null has an error of its own.
Value list_argument(Machine& machine, const Value& value) {
  if (value.is(Type::null)) raise(error::null_use);
  Value list = array_argument(machine, value);
  if (list.array()->dimensions > 1) raise(error::type_mismatch);
  return list;
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
  const Value array = array_argument(machine, arguments[0]);
  return Value::long_integer(upper_bound(*array.array(), dimension_argument(machine, arguments)));
}

Value l_bound(Machine& machine, Arguments arguments) {
  const Value array = array_argument(machine, arguments[0]);
  upper_bound(*array.array(), dimension_argument(machine, arguments));
  return Value::long_integer(0);
}

Value join(Machine& machine, Arguments arguments) {
  const Value held = list_argument(machine, arguments[0]);
  const Array& list = *held.array();
  const Value blank{machine.heap.unit_string(u' ')};
  const Text separator(machine, arguments.has(1) ? arguments[1] : blank);
  HeapVector<Ref<String>> texts{HeapAllocator<Ref<String>>(machine.heap)};
  texts.reserve(list.count);
  std::size_t length = list.count > 0 ? (list.count - 1) * separator.view().size() : 0;
  for (std::size_t i = 0; i < list.count; ++i) {
    if (list.elements[i].is(Type::null)) raise(error::type_mismatch);
    texts.push_back(to_string(machine, list.elements[i]));
    length += texts.back()->length;
    machine.heap.work(sizeof(Value));
  }
  Ref<String> whole = machine.heap.blank_string(length);
  char16_t* next = whole->units();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (i > 0) next = std::copy(separator.view().begin(), separator.view().end(), next);
    next = std::copy_n(texts[i]->units(), texts[i]->length, next);
  }
  return Value(std::move(whole));
}

// Walks over the parts of a text.
template <class Action>
void for_each_part(Machine& machine, std::u16string_view text, std::u16string_view separator,
                   std::size_t most, Action action) {
  std::size_t from = 0;
  for (std::size_t parts = 1; parts < most; ++parts) {
    const std::size_t found = find_text(machine.heap, text, separator, from);
    if (found == text.npos) break;
    action(from, found - from);
    from = found + separator.size();
    machine.heap.work(sizeof(Value));
  }
  action(from, text.size() - from);
}

Value split(Machine& machine, Arguments arguments) {
  const Text whole(machine, arguments[0]);
  const Value blank{machine.heap.unit_string(u' ')};
  const Text separator(machine, arguments.has(1) ? arguments[1] : blank);
  const std::int64_t count = arguments.has(2) ? to_long(machine, arguments[2]) : -1;
  if (count < -1) raise(error::invalid_call);
  const bool ignoring_case = ignores_case(machine, arguments, 3);
  const std::u16string_view text = whole;
  Heap& heap = machine.heap;
  if (text.empty() || count == 0) return Value(make_list(heap, 0));
  const auto most = separator.view().empty() ? 1 : count < 0 ? SIZE_MAX : static_cast<std::size_t>(count);
  const HeapText lower_whole = lower_text(machine, ignoring_case ? text : std::u16string_view());
  const HeapText lower_separator = lower_text(machine, separator);
  const std::u16string_view searched = ignoring_case ? std::u16string_view(lower_whole) : text;
  const std::u16string_view sought = ignoring_case ? std::u16string_view(lower_separator) : separator.view();
  // Counted first, so that nothing but the list itself takes memory.
  std::size_t parts = 0;
  for_each_part(machine, searched, sought, most, [&](std::size_t, std::size_t) { ++parts; });
  Ref<Array> list = make_list(heap, parts);
  Value* next = list->elements;
  for_each_part(machine, searched, sought, most, [&](std::size_t from, std::size_t length) {
    *next++ = Value(heap.string(text.substr(from, length)));
  });
  return Value(std::move(list));
}

Value filter(Machine& machine, Arguments arguments) {
  const Value held = list_argument(machine, arguments[0]);
  const Array& list = *held.array();
  const Text sought(machine, arguments[1]);
  const bool include = !arguments.has(2) || to_boolean(machine, arguments[2]);
  const bool ignoring_case = ignores_case(machine, arguments, 3);
  const HeapText lower_sought = lower_text(machine, sought);
  HeapVector<Ref<String>> kept{HeapAllocator<Ref<String>>(machine.heap)};
  for (std::size_t i = 0; i < list.count; ++i) {
    Ref<String> text = to_string(machine, list.elements[i]);
    machine.heap.work(sizeof(Value) + text->length);
    const std::size_t found =
        ignoring_case ? find_text(machine.heap, lower_text(machine, text->view()), lower_sought, 0)
                      : find_text(machine.heap, text->view(), sought, 0);
    if ((found != std::u16string_view::npos) == include) kept.push_back(std::move(text));
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
