#include "components/directory/domain_name.h"

#include <memory>
#include <string_view>

#include <ldap.h>

#include "core/text/domain_names.h"
#include "core/text/text.h"

namespace zrl::directory {

namespace {

std::string_view view(const berval& value) {
  return {value.bv_val == nullptr ? "" : value.bv_val, value.bv_len};
}

// The label of one part of a name; empty if it is no domain component.
std::string_view label_of(LDAPRDN part) {
  if (part == nullptr || part[0] == nullptr || part[1] != nullptr) return {};
  const std::string_view type = view(part[0]->la_attr);
  const bool is_component = equals_ignoring_case(type, "dc") || type == "0.9.2342.19200300.100.1.25";
  const std::string_view value = view(part[0]->la_value);
  return is_component && is_label(value) ? value : std::string_view();
}

}  // namespace

std::string domain_of(const std::string& distinguished_name) {
  LDAPDN parts = nullptr;
  if (ldap_str2dn(distinguished_name.c_str(), &parts, LDAP_DN_FORMAT_LDAPV3) != LDAP_SUCCESS) return {};
  const std::unique_ptr<LDAPRDN, decltype(&ldap_dnfree)> owner(parts, ldap_dnfree);
  std::string result;
  for (LDAPRDN* part = parts; part != nullptr && *part != nullptr; ++part) {
    const std::string_view label = label_of(*part);
    if (label.empty()) return {};
    if (!result.empty()) result += '.';
    result += label;
  }
  return result.size() <= longest_domain_name ? lower(result) : std::string();
}

}  // namespace zrl::directory
