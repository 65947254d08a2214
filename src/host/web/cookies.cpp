#include "host/web/cookies.h"

#include <algorithm>

#include "core/text/text.h"

namespace zrl::web {

std::string_view cookie_of(const Request& request, std::string_view name) {
  std::string_view rest = request.cookie;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    const std::string_view cookie = trim(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (cookie.starts_with(name) && cookie.substr(name.size()).starts_with('=')) {
      return cookie.substr(name.size() + 1);
    }
  }
  return {};
}

std::string set_cookie(const Request& request, const NewCookie& cookie) {
  std::string text(cookie.name);
  text.append("=").append(cookie.value).append("; Path=").append(cookie.path);
  text += "; HttpOnly; SameSite=Strict";
  if (cookie.value.empty()) {
    text += "; Max-Age=0";
  } else if (cookie.lasts.count() > 0) {
    text += "; Max-Age=" + std::to_string(cookie.lasts.count());
  }
  if (request.over_tls || request.origin.starts_with("https://")) text += "; Secure";
  return text;
}

}  // namespace zrl::web
