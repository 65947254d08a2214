// Headers: the result is valid UTF-8 whatever they hold, valid text without encoded words stays as it is, and
// the result does not outgrow the header beyond what its character sets can do.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/text/encoded_words.h"
#include "core/text/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view header(reinterpret_cast<const char*>(data), size);
  const std::string text = zrl::decode_encoded_words(header);
  if (!zrl::is_valid_utf8(text)) std::abort();
  if (header.find("?=") == header.npos && zrl::is_valid_utf8(header) && text != header) std::abort();
  if (text.size() > 16 * size) std::abort();
  return 0;
}
