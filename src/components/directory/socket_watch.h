#pragma once

#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>

#include <lber.h>
#include <ldap.h>

namespace zrl::directory {

// A layer between the directory library and its socket. By itself the library waits without limit for the
// rest of a message or of a TLS handshake. With this layer it waits until the deadline, events are served
// meanwhile, and a message of more than `message_bytes` ends the connection.
class SocketWatch {
 public:
  using Clock = std::chrono::steady_clock;

  SocketWatch(std::function<void()> serve, std::size_t message_bytes);
  SocketWatch(const SocketWatch&) = delete;
  SocketWatch& operator=(const SocketWatch&) = delete;

  // To be called before the connection is opened. The watch must outlive the handle.
  void attach(LDAP* ldap);

  void set_deadline(Clock::time_point deadline) { deadline_ = deadline; }
  bool is_late() const { return Clock::now() >= deadline_; }

  // Whether the server took a connection, encrypted or not.
  bool has_connected() const { return has_connected_; }

  // Serves waiting events, unless they were served only a moment ago.
  void serve();
  // From now on serves no events and waits for nothing, so that the connection can be closed at once.
  void close();

  // Raises again what an event raised while the library waited. The library itself only reports a failure.
  void rethrow() const;

 private:
  static int connected(LDAP* ldap, Sockbuf* buffer, LDAPURLDesc* url, sockaddr* address, ldap_conncb* self);
  static void disconnected(LDAP* ldap, Sockbuf* buffer, ldap_conncb* self);
  static int set_up(Sockbuf_IO_Desc* layer, void* self);
  static int remove(Sockbuf_IO_Desc* layer);
  static int control(Sockbuf_IO_Desc* layer, int option, void* argument);
  static ber_slen_t read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t size);
  static ber_slen_t write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t size);

  // Waits until the socket is ready. False, with errno set, if the deadline has passed or an event raised.
  bool wait(Sockbuf_IO_Desc* layer, short event);

  std::function<void()> serve_;
  ber_len_t message_bytes_;
  Clock::time_point deadline_ = Clock::time_point::max();
  Clock::time_point served_;
  std::exception_ptr raised_;
  bool has_connected_ = false;
  ldap_conncb callbacks_;
  Sockbuf_IO layer_;
};

}  // namespace zrl::directory
