#pragma once

#include "net/resolver_file.h"

namespace zrl {

// Opens a socket of the type, SOCK_DGRAM or SOCK_STREAM, that blocks nowhere, and connects it to the server.
// The caller closes it. -1 if it cannot be opened. `error` is 0, or the number (errno) of what failed: an
// address that cannot be read is EADDRNOTAVAIL, and EINPROGRESS means that a stream is being connected.
int connected_socket(const DnsServer& server, int type, int& error);

}  // namespace zrl
