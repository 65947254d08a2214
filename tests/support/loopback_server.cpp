#include "support/loopback_server.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zrl::test {

namespace {

template <auto release>
struct Release {
  template <typename Type>
  void operator()(Type* object) const {
    release(object);
  }
};

int listen_on(std::uint16_t& port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(fd, generic, size) != 0 || ::listen(fd, 64) != 0 || ::getsockname(fd, generic, &size) != 0) {
    throw std::system_error(errno, std::generic_category(), "loopback server");
  }
  port = ntohs(address.sin_port);
  return fd;
}

std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> make_context(const std::optional<TlsFiles>& files) {
  std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context(nullptr, SSL_CTX_free);
  if (!files) return context;
  context.reset(SSL_CTX_new(TLS_server_method()));
  if (SSL_CTX_use_certificate_file(context.get(), files->certificate.c_str(), SSL_FILETYPE_PEM) != 1 ||
      SSL_CTX_use_PrivateKey_file(context.get(), files->key.c_str(), SSL_FILETYPE_PEM) != 1) {
    throw std::runtime_error("the certificate or the key cannot be used");
  }
  return context;
}

}  // namespace

ServedConnection::ServedConnection(LoopbackServer& server, int fd, SSL_CTX* tls) : server_(server), fd_(fd) {
  if (tls == nullptr) return;
  tls_ = SSL_new(tls);
  SSL_set_fd(tls_, fd);
  good_ = SSL_accept(tls_) == 1;
}

ServedConnection::~ServedConnection() {
  if (tls_ == nullptr) return;
  if (good_) SSL_shutdown(tls_);
  SSL_free(tls_);
}

std::string ServedConnection::receive() {
  char block[4096];
  if (!good_) return {};
  const auto got =
      tls_ != nullptr ? SSL_read(tls_, block, sizeof block) : ::recv(fd_, block, sizeof block, 0);
  if (got <= 0) good_ = false;
  return got <= 0 ? std::string() : std::string(block, static_cast<std::size_t>(got));
}

bool ServedConnection::send(std::string_view bytes) {
  while (good_ && !bytes.empty()) {
    const auto sent = tls_ != nullptr ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                                      : ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    good_ = sent > 0;
    if (good_) bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return good_;
}

bool ServedConnection::pause(std::chrono::milliseconds time) {
  std::unique_lock lock(server_.mutex_);
  return !server_.stopped_.wait_for(lock, time, [this] { return server_.stopping_; });
}

LoopbackServer::LoopbackServer(Handler handler, const std::optional<TlsFiles>& tls, std::uint16_t port)
    : handler_(std::move(handler)), tls_(make_context(tls)), listener_(listen_on(port)), port_(port) {
  std::signal(SIGPIPE, SIG_IGN);
  acceptor_ = std::thread([this] { accept_all(); });
}

LoopbackServer::~LoopbackServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    ::shutdown(listener_, SHUT_RDWR);
    for (const Client& client : clients_) ::shutdown(client.fd, SHUT_RDWR);
  }
  stopped_.notify_all();
  acceptor_.join();
  for (Client& client : clients_) {
    client.thread.join();
    ::close(client.fd);
  }
  ::close(listener_);
}

void LoopbackServer::accept_all() {
  for (;;) {
    const int fd = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    const std::lock_guard lock(mutex_);
    if (stopping_ || fd < 0) {
      if (fd >= 0) ::close(fd);
      if (stopping_) return;
      continue;
    }
    ++accepted_;
    clients_.push_back({fd, std::thread([this, fd] { serve(fd); })});
  }
}

void LoopbackServer::serve(int fd) {
  {
    ServedConnection connection(*this, fd, tls_.get());
    handler_(connection);
  }
  ::shutdown(fd, SHUT_RDWR);  // closed when the server goes, so that the number stays ours
}

std::uint16_t free_port() {
  std::uint16_t port = 0;
  ::close(listen_on(port));
  return port;
}

TlsFiles make_certificate(const std::filesystem::path& folder, const std::string& name, long lasts) {
  const std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>> pair(EVP_EC_gen("P-256"));
  const std::unique_ptr<X509, Release<X509_free>> made(X509_new());
  X509_set_version(made.get(), X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(made.get()), 1);
  X509_gmtime_adj(X509_getm_notBefore(made.get()), -3600);
  X509_gmtime_adj(X509_getm_notAfter(made.get()), lasts);
  X509_set_pubkey(made.get(), pair.get());
  X509_NAME* subject = X509_get_subject_name(made.get());
  X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("test"), -1,
                             -1, 0);
  X509_set_issuer_name(made.get(), subject);
  for (const auto& [kind, text] : {std::pair(NID_basic_constraints, std::string("critical,CA:TRUE")),
                                   std::pair(NID_subject_alt_name, name)}) {
    const std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, kind, text.c_str()));
    X509_add_ext(made.get(), extension.get(), -1);
  }
  X509_sign(made.get(), pair.get(), EVP_sha256());

  TlsFiles files{folder / "certificate.pem", folder / "key.pem"};
  const std::unique_ptr<std::FILE, Release<std::fclose>> certificate(
      std::fopen(files.certificate.c_str(), "w"));
  PEM_write_X509(certificate.get(), made.get());
  const std::unique_ptr<std::FILE, Release<std::fclose>> key(std::fopen(files.key.c_str(), "w"));
  PEM_write_PrivateKey(key.get(), pair.get(), nullptr, nullptr, 0, nullptr, nullptr);
  return files;
}

}  // namespace zrl::test
