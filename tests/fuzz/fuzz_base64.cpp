// Base64: encoding is undone by decoding, and what was decoded survives a second time.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/text/base64.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (zrl::base64_decode(zrl::base64_encode(bytes)) != bytes) std::abort();
  const std::string decoded = zrl::base64_decode(bytes);
  if (decoded.size() > size / 4 * 3 + 3) std::abort();
  if (zrl::base64_decode(zrl::base64_encode(decoded)) != decoded) std::abort();
  return 0;
}
