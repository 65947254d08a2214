#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/array_list.h"
#include "scripting/vbscript/objects/dictionary.h"
#include "scripting/vbscript/objects/file_objects.h"
#include "scripting/vbscript/objects/lookup_object.h"
#include "scripting/vbscript/objects/regexp_object.h"
#include "scripting/vbscript/unicode.h"

// What scripts ask of their surroundings, and of the engine itself.
namespace zrl::vbs {

namespace {

std::string text_argument(Machine& machine, Arguments arguments, std::size_t i) {
  return arguments.has(i) ? to_utf8(Text(machine, arguments[i])) : std::string();
}

Value msg_box(Machine& machine, Arguments arguments) {
  const std::int64_t buttons = arguments.has(1) ? to_long(machine, arguments[1]) : 0;
  const std::string title = arguments.has(2) ? text_argument(machine, arguments, 2) : "VBScript";
  const std::string text = to_utf8(Text(machine, arguments[0]));
  const Machine::Pause pause(machine);
  const int button = machine.host().msg_box(text, static_cast<int>(buttons), title);
  return Value::integer(button);
}

Value input_box(Machine& machine, Arguments arguments) {
  const std::string text = to_utf8(Text(machine, arguments[0]));
  const std::string title = text_argument(machine, arguments, 1);
  const std::string preset = text_argument(machine, arguments, 2);
  const auto answer = [&] {
    const Machine::Pause pause(machine);
    return machine.host().input_box(text, title, preset);
  }();
  return answer ? Value(machine.heap.string(to_utf16(*answer))) : Value();
}

Value create_object(Machine& machine, Arguments arguments) {
  return machine.create_object(Text(machine, arguments[0]));
}

Value get_object(Machine&, Arguments) {
  raise(error::cannot_create);
}

Value get_ref(Machine& machine, Arguments arguments) {
  const Value name = arguments[0].is(Type::object) ? machine.default_value(arguments[0]) : arguments[0];
  if (!name.is(Type::string)) raise(error::type_mismatch);
  return machine.procedure_reference(name.text());
}

Value err(Machine& machine, Arguments) {
  return machine.err_object();
}

Value wscript(Machine& machine, Arguments) {
  return machine.wscript_object();
}

Value script_engine(Machine& machine, Arguments) {
  return Value(machine.heap.string(u"VBScript"));
}

template <std::int64_t number>
Value version(Machine&, Arguments) {
  return Value::long_integer(number);
}

Value get_locale(Machine& machine, Arguments) {
  return Value::long_integer(machine.locale->id);
}

Value set_locale(Machine& machine, Arguments arguments) {
  const std::int32_t before = machine.locale->id;
  const Locale* found = find_locale(0);
  if (arguments.has(0)) {
    const Value& wanted = arguments[0];
    const bool tag = wanted.is(Type::string) && !parse_number(wanted.text(), *machine.locale);
    found =
        tag ? find_locale(wanted.text()) : find_locale(static_cast<std::int32_t>(to_long(machine, wanted)));
  }
  if (!found) raise(error::bad_locale);
  machine.locale = found;
  return Value::long_integer(before);
}

constexpr Builtin functions[] = {
    {"MsgBox", 1, 5, msg_box},
    {"InputBox", 1, 7, input_box},
    {"CreateObject", 1, 2, create_object},
    {"GetObject", 0, 2, get_object},
    {"LoadPicture", 1, 1, get_object},
    {"GetRef", 1, 1, get_ref},
    {"Err", 0, 0, err},
    {"WScript", 0, 0, wscript},
    {"ScriptEngine", 0, 0, script_engine},
    {"ScriptEngineMajorVersion", 0, 0, version<5>},
    {"ScriptEngineMinorVersion", 0, 0, version<8>},
    {"ScriptEngineBuildVersion", 0, 0, version<16384>},
    {"GetLocale", 0, 0, get_locale},
    {"SetLocale", 0, 1, set_locale},
};

}  // namespace

std::span<const Builtin> host_functions() {
  return functions;
}

namespace {

template <class T>
Value made(Machine& machine) {
  return Value(Ref<Object>(machine.heap.make<T>().get()));
}

// Objects that the host stands behind.
Value file_system(Machine& machine) {
  return machine.host().files() ? made<FileSystemObject>(machine) : Value();
}

Value lookup(Machine& machine) {
  return machine.host().lookups() ? made<LookupObject>(machine) : Value();
}

struct Creatable {
  std::u16string_view name;  // in lower case
  Value (*make)(Machine& machine);
};

constexpr Creatable creatables[] = {
    {u"scripting.dictionary", made<Dictionary>},
    {u"scripting.filesystemobject", file_system},
    {u"system.collections.arraylist", made<ArrayList>},
    {u"vbscript.regexp", made<RegexpObject>},
    {u"regexp", made<RegexpObject>},
    {u"console.lookup", lookup},
};

}  // namespace

Value Machine::create_object(std::u16string_view class_name) {
  const std::u16string lower = lower_cased(class_name);
  for (const Creatable& creatable : creatables) {
    if (creatable.name != lower) continue;
    Value object = creatable.make(*this);
    if (object.is(Type::object)) return object;
  }
  Failure failure;
  failure.number = error::cannot_create;
  failure.description = to_utf16(error_text(failure.number));
  failure.source = u"Microsoft VBScript runtime error";
  failure.subject = std::u16string(class_name);
  failure.note = u"scripts reach nothing outside of the console, by design";
  throw failure;
}

}  // namespace zrl::vbs
