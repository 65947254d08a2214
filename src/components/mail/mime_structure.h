#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

// The structure of a mail: headers and multiparts.
//
// The library's own parser for whole messages is not used. It keeps objects for every field and part, walks a
// stack of boundaries for every line, reads addresses recursively, and loses what follows an encoded
// word with padding: a mail of a few megabytes can take gigabytes or half a minute, or overflow the stack.
// Here a mail is scanned in place, and the library reads single types and bodies of bounded size only.
namespace zrl::mail {

enum class MimeField { from, to, subject, content_type, content_disposition, content_transfer_encoding };
inline constexpr std::size_t mime_field_count = 6;

// A message, or a part of one.
struct MimeEntity {
  // The value of the first field of each name, unfolded and cut at `longest_field` bytes, otherwise
  // unchanged; empty if there is none.
  std::array<std::string, mime_field_count> fields;
  std::string_view body;  // of the source

  const std::string& field(MimeField name) const { return fields[static_cast<std::size_t>(name)]; }
};

inline constexpr std::size_t longest_field = std::size_t{64} << 10;

// Splits header and body; views point into `source`. Lines of a header that are no fields are skipped; but if
// the first line is no field, there is no header, and everything is body.
MimeEntity read_entity(std::string_view source);

// Calls `visit` for each part of the body of a multipart, until it returns false. The last part may
// lack the closing boundary.
void for_each_part(std::string_view body, const std::string& boundary,
                   const std::function<bool(std::string_view part)>& visit);

}  // namespace zrl::mail
