// Messages of the browser: any bytes are parsed or refused, and what is parsed keeps its promises.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/web/messages.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using zrl::web::BrowserMessage;
  const auto parsed = zrl::web::parse_message({reinterpret_cast<const char*>(data), size});
  if (const auto* message = std::get_if<BrowserMessage>(&parsed)) {
    if (message->type == BrowserMessage::Type::event && message->control.empty()) std::abort();
  } else if (std::get<zrl::web::Malformed>(parsed).why.empty()) {
    std::abort();
  }
  return 0;
}
