// HTML: the text is valid UTF-8 and does not outgrow the HTML.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "components/html/html.h"
#include "core/text/utf8.h"
#include "support/fake_services.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static zrl::test::FakeServices console;
  static const auto converter = zrl::html::make(console);
  const std::string text = converter->html2txt({reinterpret_cast<const char*>(data), size});
  if (!zrl::is_valid_utf8(text) || text.size() > 3 * size) std::abort();
  return 0;
}
