#pragma once

#include <string_view>

namespace zrl::web {

struct HeaderLine {
  std::string_view name;
  std::string_view value;
};

// What every answer carries, whatever it says: pages of ours run no foreign scripts and appear in nobody's
// frames. The last one, Strict-Transport-Security (RFC 6797), is only for answers over TLS.
inline constexpr HeaderLine security_headers[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; font-src 'self'; "
     "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
};
inline constexpr HeaderLine transport_security{"Strict-Transport-Security", "max-age=31536000"};

// Calls set(name, value) for each of them.
template <typename Set>
void for_each_security_header(bool over_tls, Set set) {
  for (const HeaderLine& line : security_headers) set(line.name, line.value);
  if (over_tls) set(transport_security.name, transport_security.value);
}

}  // namespace zrl::web
