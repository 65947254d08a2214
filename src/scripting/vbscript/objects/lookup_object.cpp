#include "scripting/vbscript/objects/lookup_object.h"

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

// Longer texts are no names, addresses or entries.
constexpr std::size_t longest_question = 1024;

std::string question(Machine& machine, Arguments arguments, std::size_t i) {
  const Text text(machine, arguments[i]);
  if (text.view().size() > longest_question) raise(error::invalid_call);
  return to_utf8(text);
}

// Asks the host. Time goes on meanwhile, and is looked at afterwards.
template <class Action>
auto asked(Machine& machine, Action action) {
  Lookups* lookups = machine.host().lookups();
  if (!lookups) raise(error::cannot_create);
  machine.count_lookup();
  machine.check_time();
  try {
    auto answer = action(*lookups);
    machine.check_time();
    return answer;
  } catch (const ServiceError& error) {
    Failure failure;
    failure.number = error.number;
    failure.description = to_utf16(error.text.empty() ? error_text(error.number) : error.text);
    failure.source = u"Console.Lookup";
    throw failure;
  }
}

template <std::string (Lookups::*ask)(const std::string&)>
Value text_answer(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const std::string what = question(machine, arguments, 0);
  const auto answer = asked(machine, [&](Lookups& lookups) { return (lookups.*ask)(what); });
  return Value(machine.heap.string(to_utf16(answer)));
}

Value exchangers(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const std::string domain = question(machine, arguments, 0);
  const auto found = asked(machine, [&](Lookups& lookups) { return lookups.exchangers(domain); });
  Ref<Array> list = make_list(machine.heap, found.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    list->elements[i] = Value(machine.heap.string(to_utf16(found[i])));
  }
  return Value(std::move(list));
}

Value listed(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const std::string zone = question(machine, arguments, 0);
  const std::string address = question(machine, arguments, 1);
  const auto answer = asked(machine, [&](Lookups& lookups) { return lookups.listed(zone, address); });
  return Value(machine.heap.string(to_utf16(answer)));
}

Value has_entry(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const std::string list = question(machine, arguments, 0);
  const std::string entry = question(machine, arguments, 1);
  return Value::boolean(asked(machine, [&](Lookups& lookups) { return lookups.has_entry(list, entry); }));
}

constexpr NativeMember lookup_members[] = {
    {"address", 1, 1, false, false, text_answer<&Lookups::address>},
    {"name", 1, 1, false, false, text_answer<&Lookups::name>},
    {"exchangers", 1, 1, false, false, exchangers},
    {"listed", 2, 2, false, false, listed},
    {"hasentry", 2, 2, false, false, has_entry},
};

}  // namespace

std::span<const NativeMember> LookupObject::members() const {
  return lookup_members;
}

}  // namespace zrl::vbs
