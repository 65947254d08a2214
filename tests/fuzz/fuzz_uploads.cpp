#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/text/utf8.h"
#include "host/web/offered_files.h"
#include "host/web/uploads.h"

// What a browser calls a file that it sends, and a file's name on its way into a header.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto target = zrl::web::parse_upload_target(text);
  const std::string name = zrl::web::upload_name(target ? target->name : text);
  const bool is_safe = !name.empty() && name.size() <= 120 && name.front() != '.' && name.back() != '.' &&
                       name.find_first_of(std::string_view("/\\\0\r\n", 5)) == name.npos &&
                       zrl::is_valid_utf8(name) && zrl::web::upload_name(name) == name;
  if (!is_safe) std::abort();
  const std::string header = zrl::web::attachment_header(text);
  for (const char character : header) {
    if (character < ' ' || character > '~') std::abort();
  }
  return 0;
}
