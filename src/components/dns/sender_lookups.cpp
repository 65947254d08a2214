#include "components/dns/sender_lookups.h"

namespace zrl {

bool is_dns_name(std::string_view name) {
  constexpr std::size_t longest_label = 63;
  if (name.size() > longest_name || name.find('\0') != name.npos) return false;
  for (;;) {
    const std::size_t size = std::min(name.find('.'), name.size());
    if (size == 0 || size > longest_label) return false;
    if (size == name.size()) return true;
    name.remove_prefix(size + 1);
  }
}

}  // namespace zrl
