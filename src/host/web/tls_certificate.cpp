#include "host/web/tls_certificate.h"

#include <boost/asio/ssl/context.hpp>
#include <stdexcept>

#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace zrl::web {

namespace {

namespace ssl = boost::asio::ssl;
using boost::system::error_code;

// No CBC, and no key exchange by the certificate's own key (RFC 9325).
constexpr const char* ciphers_of_tls_1_2 = "ECDHE+AESGCM:ECDHE+CHACHA20";
constexpr int seconds_of_a_week = 7 * 24 * 3600;

}  // namespace

bool TlsCertificate::State::operator==(const State& other) const {
  return file == other.file && size == other.size && modified.tv_sec == other.modified.tv_sec &&
         modified.tv_nsec == other.modified.tv_nsec;
}

TlsCertificate::TlsCertificate(std::filesystem::path certificate, std::filesystem::path key)
    : certificate_(std::move(certificate)), key_(std::move(key)), read_(states()), context_(load()) {}

std::shared_ptr<ssl::context> TlsCertificate::load() const {
  auto context = std::make_shared<ssl::context>(ssl::context::tls_server);
  context->set_options(ssl::context::default_workarounds | ssl::context::no_tlsv1 | ssl::context::no_tlsv1_1);
  if (::SSL_CTX_set_cipher_list(context->native_handle(), ciphers_of_tls_1_2) != 1) {
    throw std::runtime_error("the TLS library has none of the ciphers that are used");
  }
  error_code failure;
  context->use_certificate_chain_file(certificate_.string(), failure);
  if (failure) throw std::runtime_error("cannot use the certificate " + certificate_.string());
  context->use_private_key_file(key_.string(), ssl::context::pem, failure);
  if (failure) throw std::runtime_error("cannot use the key " + key_.string());
  return context;
}

std::string TlsCertificate::renew(bool in_any_case) {
  const States now = states();
  if (now == read_ && !in_any_case) return {};
  // A pair that does not fit may be half of a change; the other half is another change.
  read_ = now;
  try {
    context_ = load();
    return {};
  } catch (const std::runtime_error& failure) {
    return std::string(failure.what()) + ", the one before stays in use";
  }
}

std::vector<std::string> TlsCertificate::warnings() const {
  std::vector<std::string> found;
  const X509* certificate = ::SSL_CTX_get0_certificate(context_->native_handle());
  const ASN1_TIME* end = certificate == nullptr ? nullptr : ::X509_get0_notAfter(certificate);
  int days = 0;
  int seconds = 0;
  if (end != nullptr && ::ASN1_TIME_diff(&days, &seconds, nullptr, end) == 1) {
    const long left = days * 86400L + seconds;
    if (left < 0) {
      found.push_back("the certificate " + certificate_.string() + " has expired");
    } else if (left < seconds_of_a_week) {
      found.push_back("the certificate " + certificate_.string() + " expires within a week");
    }
  }
  struct stat state{};
  if (::stat(key_.c_str(), &state) == 0 && (state.st_mode & S_IRWXO) != 0) {
    found.push_back("the key " + key_.string() + " is open to every account of this machine: chmod o= it");
  }
  return found;
}

TlsCertificate::States TlsCertificate::states() const {
  States found;
  const std::filesystem::path* files[] = {&certificate_, &key_};
  for (std::size_t i = 0; i < found.size(); ++i) {
    struct stat state{};
    if (::stat(files[i]->c_str(), &state) == 0) {
      found[i] = {state.st_mtim, state.st_ino, state.st_size};
    }
  }
  return found;
}

}  // namespace zrl::web
