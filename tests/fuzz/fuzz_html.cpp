// HTML: the text is valid UTF-8 and does not outgrow the HTML.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "components/html/html_text_converter.h"
#include "core/text/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto converter = zrl::make_html_converter_factory()();
  const std::string text = converter->html2txt({reinterpret_cast<const char*>(data), size});
  if (!zrl::is_valid_utf8(text) || text.size() > 3 * size) std::abort();
  return 0;
}
