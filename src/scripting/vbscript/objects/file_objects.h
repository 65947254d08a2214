#pragma once

#include <string>

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// Scripting.FileSystemObject, as far as scripts need it to read what lies beside them: the texts of the
// host's ScriptFiles, and the parts of paths. What would change a file is refused with error 70.
class FileSystemObject final : public NativeObject {
 public:
  std::string_view type_name() const override { return "FileSystemObject"; }
  std::span<const NativeMember> members() const override;
};

// A text that was opened for reading.
class TextStream final : public NativeObject {
 public:
  explicit TextStream(Ref<String> text) : text_(std::move(text)) {}
  std::string_view type_name() const override { return "TextStream"; }
  std::span<const NativeMember> members() const override;

  // Raises 52 where it was closed.
  std::u16string_view rest() const;
  // Goes on by that many units, which are there.
  std::u16string_view take(std::size_t length);
  void close() { text_ = {}; }
  bool at_end() const { return rest().empty(); }
  std::int64_t line() const { return line_; }
  std::int64_t column() const { return column_; }

 private:
  Ref<String> text_;
  std::size_t position_ = 0;
  std::int64_t line_ = 1;
  std::int64_t column_ = 1;
};

}  // namespace zrl::vbs
