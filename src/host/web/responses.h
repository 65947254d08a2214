#pragma once

#include <boost/json.hpp>
#include <string_view>

#include "host/web/transport.h"

namespace zrl::web {

Response json_response(int status, const boost::json::object& object);
// `code` is one of those in docs/protocol.md.
Response error_response(int status, std::string_view code);

}  // namespace zrl::web
