#include "components/block_lists/domain_name.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include <arpa/inet.h>

#include "core/text.h"

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

std::string reversed_bytes(std::span<const std::uint8_t> bytes) {
  std::string name;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) name += std::to_string(*byte) + ".";
  name.pop_back();
  return name;
}

std::string reversed_half_bytes(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string name;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    for (const unsigned half : {*byte % 16U, *byte / 16U}) name.append(1, digits[half]).append(1, '.');
  }
  name.pop_back();
  return name;
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
  const std::string address(trim(text));
  std::array<std::uint8_t, 16> bytes{};
  if (::inet_pton(AF_INET, address.c_str(), bytes.data()) == 1) {
    return reversed_bytes(std::span(bytes).first(sizeof(in_addr)));
  }
  if (::inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1) return reversed_half_bytes(bytes);
  return {};
}

}  // namespace zrl
