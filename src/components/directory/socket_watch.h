#pragma once

#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>

#include <lber.h>
#include <ldap.h>

namespace zrl::directory {

// Stands between the directory library and its socket. By itself the library waits without end for
// the rest of a message or of a greeting of TLS; here it waits until the deadline, events are
// served meanwhile, and no message is longer than told.
class SocketWatch {
 public:
  using Clock = std::chrono::steady_clock;

  SocketWatch(std::function<void()> serve, std::size_t message_bytes);
  SocketWatch(const SocketWatch&) = delete;
  SocketWatch& operator=(const SocketWatch&) = delete;

  // Before the connection is opened. The watch must live as long as the handle.
  void attach(LDAP* ldap);

  void set_deadline(Clock::time_point deadline) { deadline_ = deadline; }
  bool is_late() const { return Clock::now() >= deadline_; }

  // Lets waiting events run, if they have not for a while.
  void serve();
  // Nothing is served any more, and nobody waited for.
  void close();

  // What serving raised while the library waited; the library itself then knows of a failure only.
  void rethrow() const;

 private:
  static int connected(LDAP* ldap, Sockbuf* buffer, LDAPURLDesc* url, sockaddr* address, ldap_conncb* self);
  static void disconnected(LDAP* ldap, Sockbuf* buffer, ldap_conncb* self);
  static int set_up(Sockbuf_IO_Desc* layer, void* self);
  static int remove(Sockbuf_IO_Desc* layer);
  static int control(Sockbuf_IO_Desc* layer, int option, void* argument);
  static ber_slen_t read(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t size);
  static ber_slen_t write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t size);

  // False, and errno is set, if there is no more waiting.
  bool wait(Sockbuf_IO_Desc* layer, short event);

  std::function<void()> serve_;
  ber_len_t message_bytes_;
  Clock::time_point deadline_ = Clock::time_point::max();
  Clock::time_point served_;
  std::exception_ptr raised_;
  ldap_conncb callbacks_;
  Sockbuf_IO layer_;
};

}  // namespace zrl::directory
