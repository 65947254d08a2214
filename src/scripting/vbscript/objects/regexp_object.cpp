#include "scripting/vbscript/objects/regexp_object.h"

#include "core/text/error.h"
#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/procedure_object.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

// An estimate of what a compiled pattern takes.
std::size_t compiled_bytes(std::size_t units) {
  return 4096 + units * 16;
}

}  // namespace

RegexpObject::~RegexpObject() {
  if (charged_ > 0) heap->refund(charged_);
}

RegExp& RegexpObject::engine(Machine& machine) {
  if (!engine_) engine_ = machine.host().make_regexp();
  if (!engine_) raise(error::cannot_create);
  const std::u16string_view text = pattern ? pattern->view() : std::u16string_view();
  const std::size_t bytes = compiled_bytes(text.size());
  if (bytes > charged_) {
    heap->charge(bytes - charged_);
    charged_ = bytes;
  }
  try {
    engine_->set_pattern(text, options);
  } catch (const Error& error) {
    raise(error_text(error.number()).empty() ? error::regexp_syntax : error.number());
  }
  return *engine_;
}

MatchObject::MatchObject(Value text_value, std::size_t first, Value groups)
    : text(std::move(text_value)), first_index(first), submatches(std::move(groups)) {}

void MatchObject::clear() {
  text.clear();
  submatches.clear();
}

namespace {

RegexpObject& self(NativeObject& object) {
  return static_cast<RegexpObject&>(object);
}

// Goes through the matches of a text, all or the first one.
class Matches {
 public:
  Matches(Machine& machine, RegexpObject& object, std::u16string_view text)
      : machine_(machine), engine_(object.engine(machine)), text_(text), all_(object.global) {}

  bool next() {
    if (done_ || from_ > text_.size()) return false;
    machine_.check_time();
    try {
      if (!engine_.find(text_, from_, match)) {
        if (engine_.limit_reached()) refuse();
        return false;
      }
    } catch (const Error& error) {
      raise(error_text(error.number()).empty() ? error::regexp_object_expected : error.number());
    }
    from_ = match.whole.offset + match.whole.length + (match.whole.length == 0 ? 1 : 0);
    done_ = !all_;
    return true;
  }

  RegExpMatch match;

 private:
  // Not to know is not the same as no match: whoever writes the text could choose the answer.
  [[noreturn]] static void refuse() {
    Failure failure;
    failure.number = error::cannot_perform;
    failure.description = u"The regular expression takes too long on this text; the search was given up";
    failure.source = u"Microsoft VBScript runtime error";
    throw failure;
  }

  Machine& machine_;
  RegExp& engine_;
  std::u16string_view text_;
  bool all_;
  bool done_ = false;
  std::size_t from_ = 0;
};

Value pattern(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  Ref<String>& pattern = self(object).pattern;
  if (use == Use::get) return Value(pattern ? pattern : machine.heap.empty_string());
  pattern = to_string(machine, arguments[0]);
  return {};
}

Value flag(Machine& machine, bool& flag, Use use, Arguments arguments) {
  if (use == Use::get) return Value::boolean(flag);
  flag = to_boolean(machine, arguments[0]);
  return {};
}

Value global(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  return flag(machine, self(object).global, use, arguments);
}

Value ignore_case(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  return flag(machine, self(object).options.ignore_case, use, arguments);
}

Value multi_line(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  return flag(machine, self(object).options.multiline, use, arguments);
}

Value test(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  const Ref<String> text = to_string(machine, arguments[0]);
  return Value::boolean(Matches(machine, self(object), text->view()).next());
}

std::u16string_view part(std::u16string_view text, const RegExpMatch::Span& span) {
  return span.offset == RegExpMatch::npos ? std::u16string_view() : text.substr(span.offset, span.length);
}

Value execute(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  const Ref<String> text = to_string(machine, arguments[0]);
  Heap& heap = machine.heap;
  HeapVector<Value> found{HeapAllocator<Value>(heap)};
  for (Matches matches(machine, self(object), text->view()); matches.next();) {
    const RegExpMatch& match = matches.match;
    Ref<Array> groups = make_list(heap, match.groups.size());
    for (std::size_t i = 0; i < match.groups.size(); ++i) {
      if (match.groups[i].offset == RegExpMatch::npos) continue;
      groups->elements[i] = Value(heap.string(part(text->view(), match.groups[i])));
    }
    Ref<MatchList> submatches = heap.make<MatchList>(Value(std::move(groups)), true);
    Value whole(heap.string(part(text->view(), match.whole)));
    Ref<MatchObject> made =
        heap.make<MatchObject>(std::move(whole), match.whole.offset, Value(Ref<Object>(submatches.get())));
    found.emplace_back(Ref<Object>(made.get()));
  }
  Ref<Array> list = make_list(heap, found.size());
  for (std::size_t i = 0; i < found.size(); ++i) list->elements[i] = std::move(found[i]);
  Ref<MatchList> result = heap.make<MatchList>(Value(std::move(list)), false);
  return Value(Ref<Object>(result.get()));
}

// Adds the replacement of one match: $1 to $99, $&, $`, $', $$.
void expand(HeapText& out, std::u16string_view with, std::u16string_view text, const RegExpMatch& match) {
  for (std::size_t i = 0; i < with.size(); ++i) {
    const char16_t next = i + 1 < with.size() ? with[i + 1] : u'\0';
    if (with[i] != u'$' || next == u'\0') {
      out += with[i];
    } else if (next == u'$') {
      out += u'$';
      ++i;
    } else if (next == u'&') {
      out += part(text, match.whole);
      ++i;
    } else if (next == u'`') {
      out += text.substr(0, match.whole.offset);
      ++i;
    } else if (next == u'\'') {
      out += text.substr(match.whole.offset + match.whole.length);
      ++i;
    } else {
      std::size_t digits = 0;
      std::size_t group = 0;
      for (std::size_t n = 0; digits < 2 && i + 1 + digits < with.size() && is_digit(with[i + 1 + digits]);) {
        n = n * 10 + (with[i + 1 + digits] - u'0');
        if (n > match.groups.size()) break;
        group = n;
        ++digits;
      }
      if (digits == 0 || group == 0) {
        out += u'$';
        continue;
      }
      out += part(text, match.groups[group - 1]);
      i += digits;
    }
  }
}

// Replaces each match by what a procedure returns for the match, its groups, its offset and the text.
Value replace_by_call(Machine& machine, RegexpObject& object, const Ref<String>& text, const Proc& proc) {
  Heap& heap = machine.heap;
  // All are found first, for the procedure may use the expression.
  HeapVector<Value> found{HeapAllocator<Value>(heap)};
  std::size_t taken = 0;  // values for each match
  for (Matches matches(machine, object, text->view()); matches.next();) {
    const RegExpMatch& match = matches.match;
    taken = match.groups.size() + 3;
    found.emplace_back(heap.string(part(text->view(), match.whole)));
    for (const RegExpMatch::Span& group : match.groups) {
      found.push_back(group.offset == RegExpMatch::npos ? Value()
                                                        : Value(heap.string(part(text->view(), group))));
    }
    found.push_back(Value::long_integer(static_cast<std::int64_t>(match.whole.offset)));
    found.emplace_back(text);
  }
  HeapText result{HeapAllocator<char16_t>(heap)};
  std::size_t copied = 0;
  for (std::size_t i = 0; i < found.size(); i += taken) {
    const std::span<const Value> arguments(found.data() + i, taken);
    const auto offset = static_cast<std::size_t>(arguments[taken - 2].i());
    const Value replacement = machine.invoke(proc, nullptr, arguments);
    result += text->view().substr(copied, offset - copied);
    result += to_string(machine, replacement)->view();
    heap.check_string_length(result.size());
    copied = offset + arguments[0].string()->length;
  }
  result += text->view().substr(copied);
  return Value(heap.string(result));
}

Value replace(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  const Ref<String> text = to_string(machine, arguments[0]);
  if (const auto* procedure = as_procedure(arguments[1].is(Type::object) ? arguments[1].object() : nullptr)) {
    return replace_by_call(machine, self(object), text, procedure->proc());
  }
  // True is written as a number here.
  const Value replacement = arguments[1].is(Type::boolean) ? Value::integer(arguments[1].i()) : arguments[1];
  const Ref<String> with = to_string(machine, replacement);
  HeapText result{HeapAllocator<char16_t>(machine.heap)};
  std::size_t copied = 0;
  for (Matches matches(machine, self(object), text->view()); matches.next();) {
    const RegExpMatch::Span& whole = matches.match.whole;
    result += text->view().substr(copied, whole.offset - copied);
    expand(result, with->view(), text->view(), matches.match);
    machine.heap.check_string_length(result.size());
    copied = whole.offset + whole.length;
  }
  if (copied == 0 && result.empty()) return Value(text);
  result += text->view().substr(copied);
  return Value(machine.heap.string(result));
}

constexpr NativeMember regexp_members[] = {
    {"pattern", 0, 0, true, false, pattern},
    {"global", 0, 0, true, false, global},
    {"ignorecase", 0, 0, true, false, ignore_case},
    {"multiline", 0, 0, true, false, multi_line},
    {"test", 1, 1, false, false, test},
    {"execute", 1, 1, false, false, execute},
    {"replace", 2, 2, false, false, replace},
};

Value match_value(Machine&, NativeObject& object, Use, Arguments) {
  return static_cast<MatchObject&>(object).text;
}

Value first_index(Machine&, NativeObject& object, Use, Arguments) {
  return Value::long_integer(static_cast<std::int64_t>(static_cast<MatchObject&>(object).first_index));
}

Value match_length(Machine&, NativeObject& object, Use, Arguments) {
  const Value& text = static_cast<MatchObject&>(object).text;
  return Value::long_integer(text.is(Type::string) ? text.string()->length : 0);
}

Value submatches(Machine&, NativeObject& object, Use, Arguments) {
  return static_cast<MatchObject&>(object).submatches;
}

constexpr NativeMember match_members[] = {
    {"value", 0, 0, false, true, match_value},
    {"firstindex", 0, 0, false, false, first_index},
    {"length", 0, 0, false, false, match_length},
    {"submatches", 0, 0, false, false, submatches},
};

Value list_item(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  const Value list = static_cast<MatchList&>(object).list;
  const std::int64_t index = to_long(machine, arguments[0]);
  if (!list.is(Type::array)) raise(error::invalid_call);
  if (index < 0 || static_cast<std::uint64_t>(index) >= list.array()->count) raise(error::invalid_call);
  return list.array()->elements[index];
}

Value list_count(Machine&, NativeObject& object, Use, Arguments) {
  const Value& list = static_cast<MatchList&>(object).list;
  return Value::long_integer(list.is(Type::array) ? static_cast<std::int64_t>(list.array()->count) : 0);
}

constexpr NativeMember list_members[] = {
    {"item", 1, 1, false, true, list_item},
    {"count", 0, 0, false, false, list_count},
};

}  // namespace

std::span<const NativeMember> RegexpObject::members() const {
  return regexp_members;
}

std::span<const NativeMember> MatchObject::members() const {
  return match_members;
}

std::span<const NativeMember> MatchList::members() const {
  return list_members;
}

}  // namespace zrl::vbs
