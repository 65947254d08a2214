#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zrl::mail {

// How the bytes of a body are written.
struct BodyEncoding {
  std::string transfer;  // the field Content-Transfer-Encoding; what is unknown changes nothing
  std::string charset;
};

// The text of a body as UTF-8 without zero bytes, lines ended by line feeds, at most `limit` bytes.
std::string body_text(std::string_view content, const BodyEncoding& encoding, std::size_t limit);

}  // namespace zrl::mail
