#include "core/text/domain_names.h"

#include <algorithm>

#include "core/text/ascii.h"

namespace zrl {

namespace {

template <typename Test>
bool all_labels(std::string_view text, Test passes) {
  if (text.size() > longest_domain_name) return false;
  while (true) {
    const std::size_t dot = text.find('.');
    if (!passes(text.substr(0, dot))) return false;
    if (dot == text.npos) return true;
    text.remove_prefix(dot + 1);
  }
}

bool has_label_length(std::string_view label) {
  return !label.empty() && label.size() <= longest_label;
}

}  // namespace

bool is_label(std::string_view text) {
  return has_label_length(text) &&
         std::ranges::all_of(text, [](char c) { return is_letter_or_digit(c) || c == '-' || c == '_'; });
}

bool is_domain_name(std::string_view text) {
  return all_labels(text, is_label);
}

bool is_host_name(std::string_view text) {
  return all_labels(text, [](std::string_view label) {
    return is_label(label) && label.front() != '-' && label.back() != '-';
  });
}

bool has_dns_lengths(std::string_view text) {
  return all_labels(text, has_label_length);
}

bool is_dns_name(std::string_view text) {
  return has_dns_lengths(text) && text.find('\0') == text.npos;
}

}  // namespace zrl
