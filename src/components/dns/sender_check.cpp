#include "components/dns/sender_check.h"

#include <array>

namespace zrl::dns {

std::string_view name_of(SenderResult result) {
  constexpr std::array<std::string_view, 7> names = {"none",     "neutral",   "pass",     "fail",
                                                     "softfail", "temperror", "permerror"};
  return names.at(static_cast<std::size_t>(result));
}

}  // namespace zrl::dns
