#include "components/directory/server_address.h"

#include <algorithm>
#include <memory>

#include <ldap.h>

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::directory {

namespace {

constexpr int highest_port = 65535;

[[noreturn]] void refuse() {
  throw Error(error_number::invalid_property_value,
              "the name of the directory server is not valid: host, host:port, ldap://host or ldaps://host");
}

struct Release {
  void operator()(LDAPURLDesc* url) const { ldap_free_urldesc(url); }
};

}  // namespace

ServerAddress ServerAddress::parse(std::string_view text) {
  std::string url(trim(text));
  const bool is_printable =
      std::none_of(url.begin(), url.end(), [](char c) { return static_cast<unsigned char>(c) <= ' '; });
  if (url.empty() || !is_printable) refuse();
  if (url.find("://") == std::string::npos) url = "ldap://" + url;

  LDAPURLDesc* parsed = nullptr;
  if (ldap_url_parse(url.c_str(), &parsed) != LDAP_URL_SUCCESS) refuse();
  const std::unique_ptr<LDAPURLDesc, Release> owner(parsed);
  const std::string scheme = lower(parsed->lud_scheme);
  const std::string host = parsed->lud_host == nullptr ? "" : parsed->lud_host;
  if ((scheme != "ldap" && scheme != "ldaps") || host.empty() || parsed->lud_port < 0 ||
      parsed->lud_port > highest_port) {
    refuse();
  }

  const bool is_ipv6 = host.find(':') != std::string::npos;
  ServerAddress result;
  result.url = scheme + "://" + (is_ipv6 ? "[" + host + "]" : host);
  if (parsed->lud_port != 0) result.url += ":" + std::to_string(parsed->lud_port);
  if (parsed->lud_dn != nullptr) result.base = parsed->lud_dn;
  return result;
}

}  // namespace zrl::directory
