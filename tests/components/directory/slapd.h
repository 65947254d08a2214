#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

#include "support/loopback_server.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// A directory server of its own, on loopback, below the suffix "dc=corp,dc=example". It knows the
// attribute proxyAddresses (any bytes) of the class "mailUser" and the class "contact", and ends
// with this object.
class Slapd {
 public:
  struct Options {
    std::string limits = "size=unlimited";
    std::string suffix = "dc=corp,dc=example";
    std::string root = {};  // more lines of the entry about the server itself, as LDIF
    bool encrypted = false;
  };

  // `entries` is LDIF, below the suffix, whose own entry is made here.
  explicit Slapd(const std::string& entries) : Slapd(entries, Options()) {}
  Slapd(const std::string& entries, const Options& options);
  Slapd(const Slapd&) = delete;
  Slapd& operator=(const Slapd&) = delete;
  ~Slapd();

  // "127.0.0.1:PORT"
  std::string address() const { return "127.0.0.1:" + std::to_string(port_); }
  const TlsFiles& tls() const { return tls_; }

 private:
  void configure(const Options& options) const;
  void load(const std::string& entries, const std::string& suffix) const;
  void start(bool encrypted);
  bool answers() const;

  TemporaryFolder folder_;
  TlsFiles tls_;
  std::uint16_t port_ = 0;
  pid_t process_ = 0;
};

// The LDIF of a user with these addresses.
std::string user(const std::string& name, const std::string& mail,
                 const std::vector<std::string>& others = {}, const std::string& more = {});

}  // namespace zrl::test
