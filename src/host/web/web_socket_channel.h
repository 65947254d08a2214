#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <memory>

#include "host/web/browser_stream.h"
#include "host/web/http_server.h"

// Includes Beast, which takes long to compile: only http_connection.cpp should include this header.
namespace zrl::web {

using RequestHead = boost::beast::http::request_parser<boost::beast::http::empty_body>;

// Completes the WebSocket handshake (RFC 6455) that `request` asks for, and carries messages between the
// browser and the listener until either closes. The listener gets on_open() only if the handshake succeeds,
// and on_close() exactly then. Raises nothing: a failure ends the connection. `limits` must outlive it,
// `request` the call.
boost::asio::awaitable<void> serve_web_socket(BrowserStream stream, const RequestHead::value_type& request,
                                              std::shared_ptr<ChannelListener> listener,
                                              const ServerLimits& limits);

}  // namespace zrl::web
