#include "components/directory/socket_watch.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>

#include "core/text/error.h"

namespace zrl::directory {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds tick_interval{20};
// Above the socket, below TLS.
constexpr int level = (LBER_SBIOD_LEVEL_PROVIDER + LBER_SBIOD_LEVEL_TRANSPORT) / 2;

}  // namespace

SocketWatch::SocketWatch(std::function<void()> serve, std::size_t message_bytes)
    : serve_(std::move(serve)),
      message_bytes_(message_bytes),
      callbacks_{&SocketWatch::connected, &SocketWatch::disconnected, this},
      layer_{&SocketWatch::set_up, &SocketWatch::remove, &SocketWatch::control,
             &SocketWatch::read,   &SocketWatch::write,  &SocketWatch::remove} {}

void SocketWatch::attach(LDAP* ldap) {
  if (ldap_set_option(ldap, LDAP_OPT_CONNECT_CB, &callbacks_) != LDAP_OPT_SUCCESS) {
    throw Error(LDAP_LOCAL_ERROR, "connections to directory servers cannot be watched");
  }
}

void SocketWatch::serve() {
  const Clock::time_point now = Clock::now();
  if (!serve_ || now - served_ < tick_interval) return;
  serve_();
  served_ = Clock::now();
}

void SocketWatch::close() {
  serve_ = nullptr;
  deadline_ = Clock::now();
}

void SocketWatch::rethrow() const {
  if (raised_) std::rethrow_exception(raised_);
}

int SocketWatch::connected(LDAP*, Sockbuf* buffer, LDAPURLDesc*, sockaddr*, ldap_conncb* callbacks) {
  auto* self = static_cast<SocketWatch*>(callbacks->lc_arg);
  self->has_connected_ = true;
  ber_sockbuf_ctrl(buffer, LBER_SB_OPT_SET_MAX_INCOMING, &self->message_bytes_);
  return ber_sockbuf_add_io(buffer, &self->layer_, level, self);
}

void SocketWatch::disconnected(LDAP*, Sockbuf*, ldap_conncb*) {}

int SocketWatch::set_up(Sockbuf_IO_Desc* layer, void* self) {
  layer->sbiod_pvt = self;
  return 0;
}

int SocketWatch::remove(Sockbuf_IO_Desc*) {
  return 0;
}

int SocketWatch::control(Sockbuf_IO_Desc* layer, int option, void* argument) {
  return LBER_SBIOD_CTRL_NEXT(layer, option, argument);
}

ber_slen_t SocketWatch::read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t size) {
  if (!static_cast<SocketWatch*>(layer->sbiod_pvt)->wait(layer, POLLIN)) return -1;
  return LBER_SBIOD_READ_NEXT(layer, bytes, size);
}

ber_slen_t SocketWatch::write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t size) {
  if (!static_cast<SocketWatch*>(layer->sbiod_pvt)->wait(layer, POLLOUT)) return -1;
  return LBER_SBIOD_WRITE_NEXT(layer, bytes, size);
}

// Called by the library, through which nothing may be thrown.
bool SocketWatch::wait(Sockbuf_IO_Desc* layer, short event) {
  pollfd socket{-1, event, 0};
  ber_sockbuf_ctrl(layer->sbiod_sb, LBER_SB_OPT_GET_FD, &socket.fd);
  while (!raised_) {
    const auto left = std::chrono::duration_cast<milliseconds>(deadline_ - Clock::now());
    const auto patience = std::clamp(left, milliseconds(0), tick_interval);
    if (::poll(&socket, 1, static_cast<int>(patience.count())) > 0) return true;
    if (left.count() <= 0) break;
    try {
      serve();
    } catch (...) {
      raised_ = std::current_exception();
    }
  }
  errno = ETIMEDOUT;
  return false;
}

}  // namespace zrl::directory
