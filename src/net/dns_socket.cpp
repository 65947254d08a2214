#include "net/dns_socket.h"

#include <cerrno>
#include <memory>
#include <string>

#include <netdb.h>
#include <sys/socket.h>

namespace zrl {

int connected_socket(const DnsServer& server, int type, int& error) {
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
  hints.ai_socktype = type;
  addrinfo* made = nullptr;
  const std::string port = std::to_string(server.port);
  if (::getaddrinfo(server.address.c_str(), port.c_str(), &hints, &made) != 0) {
    error = EADDRNOTAVAIL;
    return -1;
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> target(made, ::freeaddrinfo);
  const int handle = ::socket(target->ai_family, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  const bool worked = handle >= 0 && ::connect(handle, target->ai_addr, target->ai_addrlen) == 0;
  error = worked ? 0 : errno;
  return handle;
}

}  // namespace zrl
