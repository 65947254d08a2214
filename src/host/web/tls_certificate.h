#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace boost::asio::ssl {
class context;
}

namespace zrl::web {

// The certificate and the key that browsers are served with, and TLS's settings: versions 1.2 and 1.3, in 1.2
// only ciphers with forward secrecy and authenticated encryption. The files are read again when they have
// changed; connections keep what they began with.
class TlsCertificate {
 public:
  // PEM files, the certificate's with its chain. Raises std::runtime_error if they cannot be used.
  TlsCertificate(std::filesystem::path certificate, std::filesystem::path key);

  std::shared_ptr<boost::asio::ssl::context> context() const { return context_; }

  // Reads the files again if they have changed, or in any case. Empty if there was no need or it worked; else
  // why the certificate in use stays, once for each change.
  std::string renew(bool in_any_case);

  // What the operator should know: a certificate that has expired or does so within a week, a key that others
  // may read. A line each.
  std::vector<std::string> warnings() const;

 private:
  // What differs after any change of a file.
  struct State {
    struct timespec modified{};
    ino_t file = 0;
    off_t size = 0;
    bool operator==(const State& other) const;
  };
  using States = std::array<State, 2>;

  std::shared_ptr<boost::asio::ssl::context> load() const;
  States states() const;

  const std::filesystem::path certificate_;
  const std::filesystem::path key_;
  States read_;
  std::shared_ptr<boost::asio::ssl::context> context_;
};

}  // namespace zrl::web
