#include "components/block_lists/domain_name.h"

#include <algorithm>

#include "components/dns/ip_address.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::size_t longest_label = 63;

bool is_label_character(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

bool is_label(std::string_view label) {
  return !label.empty() && label.size() <= longest_label && std::ranges::all_of(label, is_label_character);
}

bool has_labels(std::string_view name) {
  std::size_t dot = 0;
  while ((dot = name.find('.')) != name.npos) {
    if (!is_label(name.substr(0, dot))) return false;
    name.remove_prefix(dot + 1);
  }
  return is_label(name);
}

}  // namespace

std::string domain_name(std::string_view text) {
  std::string_view name = trim(text);
  if (name.ends_with('.')) name.remove_suffix(1);
  if (name.size() > longest_domain_name) return {};
  std::string small = lower(name);
  return has_labels(small) ? small : std::string();
}

std::string reversed_address(std::string_view text) {
  const auto address = IpAddress::parse(trim(text));
  if (!address) return {};
  const std::string name = address->reverse_name();
  return name.substr(0, name.rfind(address->family() == IpAddress::Family::v4 ? ".in-addr" : ".ip6"));
}

}  // namespace zrl
