#pragma once

#include <boost/json.hpp>
#include <string_view>

#include "host/web/transport.h"

namespace zrl::web {

inline Response json_response(int status, const boost::json::object& object) {
  return {.status = status, .content_type = "application/json", .body = boost::json::serialize(object)};
}

// `code` is one of those in docs/protocol.md.
inline Response error_response(int status, std::string_view code) {
  return json_response(status, {{"error", code}});
}

}  // namespace zrl::web
