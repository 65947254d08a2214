#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <string>

#include "host/web/connection_slots.h"
#include "host/web/http_server.h"

namespace boost::asio::ssl {
class context;
}

namespace zrl::web {

// What the connections of a server share. Must outlive them.
struct ConnectionContext {
  const ServerLimits& limits;
  HttpHandler* handler = nullptr;  // set before the first connection
  bool closing = false;            // no connection is kept alive after its next response
};

// Serves HTTP/1.1 requests (RFC 9112) one after another until the connection ends; a request for a WebSocket
// that the handler accepts turns the connection into one. The slot, which must outlive the call, records
// what is done, and may cut the connection. `tls` is null for a connection without TLS. Every response
// carries the security headers. Raises std::exception where the connection breaks.
boost::asio::awaitable<void> serve_connection(boost::asio::ip::tcp::socket socket,
                                              boost::asio::ssl::context* tls, std::string remote_address,
                                              ConnectionSlots::Slot& slot, const ConnectionContext& context);

}  // namespace zrl::web
