#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "host/web/transport.h"

namespace zrl::web {

// The value of the cookie (RFC 6265) that the request carries; empty if there is none.
std::string_view cookie_of(const Request& request, std::string_view name);

struct NewCookie {
  std::string_view name;
  std::string_view value;  // empty: the browser forgets the cookie
  std::string_view path = "/";
  std::chrono::seconds lasts{0};  // 0: until the browser is closed
};

// The value of the header Set-Cookie: for our own pages alone, hidden from their scripts, and over TLS only
// if the browser uses it.
std::string set_cookie(const Request& request, const NewCookie& cookie);

}  // namespace zrl::web
