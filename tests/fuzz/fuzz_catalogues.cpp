// Message catalogues: any text is read or refused with its line.
#include <cstdint>
#include <string_view>

#include "components/locale/catalogue.h"
#include "core/text/error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    (void)zrl::locale::Catalogue::parse(text).translate(text.substr(0, 20));
  } catch (const zrl::Error&) {  // refused
  }
  return 0;
}
