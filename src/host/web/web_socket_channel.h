#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <memory>

#include "host/web/http_server.h"

// The one header of ours that includes Beast, which is dear to compile: for http_connection.cpp alone.
namespace zrl::web {

using PlainStream = boost::beast::tcp_stream;
using TlsStream = boost::beast::ssl_stream<boost::beast::tcp_stream>;
using RequestHead = boost::beast::http::request_parser<boost::beast::http::empty_body>;

// Completes the WebSocket handshake (RFC 6455) that `request` asks for, and carries messages between the
// browser and the listener until either closes. The listener gets on_open() only if the handshake succeeds,
// and on_close() exactly then. Raises nothing: a failure ends the connection. `limits` must outlive it,
// `request` the call.
boost::asio::awaitable<void> serve_web_socket(PlainStream stream, const RequestHead::value_type& request,
                                              std::shared_ptr<ChannelListener> listener,
                                              const ServerLimits& limits);
boost::asio::awaitable<void> serve_web_socket(TlsStream stream, const RequestHead::value_type& request,
                                              std::shared_ptr<ChannelListener> listener,
                                              const ServerLimits& limits);

}  // namespace zrl::web
