#include "scripting/vbscript/objects/file_objects.h"

#include <algorithm>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/source_text.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

constexpr std::int32_t bad_file = 52;
constexpr std::int32_t input_past_end = 62;
constexpr std::int32_t permission_denied = 70;
constexpr std::int64_t for_reading = 1;

ScriptFiles& files_of(Machine& machine) {
  ScriptFiles* files = machine.host().files();
  if (!files) raise(error::cannot_create);
  return *files;
}

[[noreturn]] void refuse(const ServiceError& error) {
  Failure failure;
  failure.number = error.number;
  failure.description = to_utf16(error.text.empty() ? error_text(error.number) : error.text);
  failure.source = u"Microsoft VBScript runtime error";
  throw failure;
}

// OpenTextFile path, mode, create, format
Value open_text_file(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const std::string path = to_utf8(Text(machine, arguments[0]));
  const std::int64_t mode = arguments.has(1) ? to_long(machine, arguments[1]) : for_reading;
  if (mode != for_reading) raise(permission_denied);
  machine.check_time();
  try {
    const SourceText source = read_source(files_of(machine).contents(path));
    Ref<TextStream> stream = machine.heap.make<TextStream>(machine.heap.string(to_utf16(source.text)));
    return Value(Ref<Object>(stream.get()));
  } catch (const ServiceError& error) {
    refuse(error);
  }
}

Value file_exists(Machine& machine, NativeObject&, Use, Arguments arguments) {
  machine.check_time();
  return Value::boolean(files_of(machine).file_exists(to_utf8(Text(machine, arguments[0]))));
}

Value folder_exists(Machine& machine, NativeObject&, Use, Arguments arguments) {
  machine.check_time();
  return Value::boolean(files_of(machine).folder_exists(to_utf8(Text(machine, arguments[0]))));
}

Value denied(Machine&, NativeObject&, Use, Arguments) {
  raise(permission_denied);
}

// The parts of a path, whose separators are either slash.
struct Path {
  std::u16string_view folder;
  std::u16string_view name;

  explicit Path(std::u16string_view path) {
    while (path.size() > 1 && is_slash(path.back())) path.remove_suffix(1);
    const std::size_t slash = path.find_last_of(u"/\\");
    folder = slash == path.npos ? std::u16string_view() : path.substr(0, slash);
    name = slash == path.npos ? path : path.substr(slash + 1);
  }
  std::size_t point() const { return name.rfind(u'.'); }
  static bool is_slash(char16_t unit) { return unit == u'/' || unit == u'\\'; }
};

Value file_name(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const Text path(machine, arguments[0]);
  return Value(machine.heap.string(Path(path).name));
}

Value base_name(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const Text text(machine, arguments[0]);
  const Path path(text);
  return Value(machine.heap.string(path.name.substr(0, path.point())));
}

Value extension_name(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const Text text(machine, arguments[0]);
  const Path path(text);
  if (path.point() == path.name.npos) return Value(machine.heap.empty_string());
  return Value(machine.heap.string(path.name.substr(path.point() + 1)));
}

Value parent_folder_name(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const Text path(machine, arguments[0]);
  return Value(machine.heap.string(Path(path).folder));
}

Value build_path(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const Text folder(machine, arguments[0]);
  const Text name(machine, arguments[1]);
  std::u16string path(folder.view());
  if (!path.empty() && !Path::is_slash(path.back())) path += u'\\';
  return Value(machine.heap.string(path.append(name.view())));
}

constexpr NativeMember file_system_members[] = {
    {"opentextfile", 1, 4, false, false, open_text_file},
    {"fileexists", 1, 1, false, false, file_exists},
    {"folderexists", 1, 1, false, false, folder_exists},
    {"getfilename", 1, 1, false, false, file_name},
    {"getbasename", 1, 1, false, false, base_name},
    {"getextensionname", 1, 1, false, false, extension_name},
    {"getparentfoldername", 1, 1, false, false, parent_folder_name},
    {"buildpath", 2, 2, false, false, build_path},
    {"createtextfile", 1, 3, false, false, denied},
    {"createfolder", 1, 1, false, false, denied},
    {"deletefile", 1, 2, false, false, denied},
    {"deletefolder", 1, 2, false, false, denied},
    {"copyfile", 2, 3, false, false, denied},
    {"copyfolder", 2, 3, false, false, denied},
    {"movefile", 2, 2, false, false, denied},
    {"movefolder", 2, 2, false, false, denied},
};

TextStream& self(NativeObject& object) {
  return static_cast<TextStream&>(object);
}

Value read_all(Machine& machine, NativeObject& object, Use, Arguments) {
  TextStream& stream = self(object);
  if (stream.at_end()) raise(input_past_end);
  return Value(machine.heap.string(stream.take(stream.rest().size())));
}

std::u16string_view taken_line(TextStream& stream) {
  const std::u16string_view rest = stream.rest();
  if (rest.empty()) raise(input_past_end);
  const std::size_t end = std::min(rest.find(u'\n'), rest.size());
  std::u16string_view line = rest.substr(0, end);
  stream.take(std::min(end + 1, rest.size()));
  if (line.ends_with(u'\r')) line.remove_suffix(1);
  return line;
}

Value read_line(Machine& machine, NativeObject& object, Use, Arguments) {
  return Value(machine.heap.string(taken_line(self(object))));
}

Value skip_line(Machine&, NativeObject& object, Use, Arguments) {
  taken_line(self(object));
  return {};
}

std::u16string_view taken_units(Machine& machine, TextStream& stream, Arguments arguments) {
  const std::int64_t count = to_long(machine, arguments[0]);
  if (count < 0) raise(error::invalid_call);
  if (count > 0 && stream.at_end()) raise(input_past_end);
  return stream.take(std::min(static_cast<std::size_t>(count), stream.rest().size()));
}

Value read(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  return Value(machine.heap.string(taken_units(machine, self(object), arguments)));
}

Value skip(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  taken_units(machine, self(object), arguments);
  return {};
}

Value at_end_of_stream(Machine&, NativeObject& object, Use, Arguments) {
  return Value::boolean(self(object).at_end());
}

Value at_end_of_line(Machine&, NativeObject& object, Use, Arguments) {
  const std::u16string_view rest = self(object).rest();
  return Value::boolean(rest.empty() || rest[0] == u'\n' || rest.starts_with(u"\r\n"));
}

Value line(Machine&, NativeObject& object, Use, Arguments) {
  return Value::long_integer(self(object).line());
}

Value column(Machine&, NativeObject& object, Use, Arguments) {
  return Value::long_integer(self(object).column());
}

Value close(Machine&, NativeObject& object, Use, Arguments) {
  self(object).close();
  return {};
}

constexpr NativeMember stream_members[] = {
    {"readall", 0, 0, false, false, read_all},
    {"readline", 0, 0, false, false, read_line},
    {"read", 1, 1, false, false, read},
    {"skip", 1, 1, false, false, skip},
    {"skipline", 0, 0, false, false, skip_line},
    {"atendofstream", 0, 0, false, false, at_end_of_stream},
    {"atendofline", 0, 0, false, false, at_end_of_line},
    {"line", 0, 0, false, false, line},
    {"column", 0, 0, false, false, column},
    {"close", 0, 0, false, false, close},
    {"write", 1, 1, false, false, denied},
    {"writeline", 0, 1, false, false, denied},
};

}  // namespace

std::span<const NativeMember> FileSystemObject::members() const {
  return file_system_members;
}

std::span<const NativeMember> TextStream::members() const {
  return stream_members;
}

std::u16string_view TextStream::rest() const {
  if (!text_) raise(bad_file);
  return text_->view().substr(position_);
}

std::u16string_view TextStream::take(std::size_t length) {
  const std::u16string_view taken = rest().substr(0, length);
  heap->work(length);
  for (const char16_t unit : taken) {
    ++column_;
    if (unit != u'\n') continue;
    ++line_;
    column_ = 1;
  }
  position_ += length;
  return taken;
}

}  // namespace zrl::vbs
