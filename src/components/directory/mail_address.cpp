#include "components/directory/mail_address.h"

#include "core/text/ascii.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::directory {

namespace {

// What SMTP allows (RFC 5321): 64 for the name, 255 for the domain.
constexpr std::size_t longest_address = 320;
constexpr std::string_view prefix = "smtp:";

}  // namespace

std::string address_in(std::string_view value) {
  if (value.size() > longest_address + prefix.size()) return {};
  value = trim(value);
  if (equals_ignoring_case(value.substr(0, prefix.size()), prefix)) {
    value = trim(value.substr(prefix.size()));
  } else if (value.find(':') < value.find('@')) {
    return {};
  }
  if (value.find('@') == value.npos || value.size() > longest_address) return {};
  if (has_controls(value) || !is_valid_utf8(value)) return {};
  return lower(value);
}

}  // namespace zrl::directory
