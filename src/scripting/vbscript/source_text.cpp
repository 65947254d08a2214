#include "scripting/vbscript/source_text.h"

#include "core/text/character_sets.h"
#include "core/text/utf16.h"
#include "core/text/utf8.h"

namespace zrl::vbs {

SourceText read_source(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const bool little = bytes.starts_with("\xFF\xFE");
  if (little || bytes.starts_with("\xFE\xFF")) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
      units += static_cast<char16_t>(little ? at(i) | at(i + 1) << 8 : at(i) << 8 | at(i + 1));
    }
    return {to_utf8(units), false};
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  if (is_valid_utf8(bytes)) return {std::string(bytes), false};
  std::u16string units;
  units.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) units += windows_1252_character(at(i));
  return {to_utf8(units), true};
}

}  // namespace zrl::vbs
