#include "host/web/responses.h"

namespace zrl::web {

Response json_response(int status, const boost::json::object& object) {
  return {.status = status, .content_type = "application/json", .body = boost::json::serialize(object)};
}

Response error_response(int status, std::string_view code) {
  return json_response(status, {{"error", code}});
}

}  // namespace zrl::web
