#include "support/smtp_sink.h"

#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zrl::test {

namespace {

void require(bool worked, const char* what) {
  if (!worked) throw std::runtime_error(what);
}

// A server's side of TLS, with a certificate that was made for it.
std::shared_ptr<SSL_CTX> make_tls() {
  const std::shared_ptr<SSL_CTX> tls(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  const std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
  const std::shared_ptr<X509> certificate(X509_new(), X509_free);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), 0);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
  X509_set_pubkey(certificate.get(), key.get());
  X509_NAME* name = X509_get_subject_name(certificate.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("sink.example"),
                             -1, -1, 0);
  X509_set_issuer_name(certificate.get(), name);
  require(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0, "certificate");
  require(SSL_CTX_use_certificate(tls.get(), certificate.get()) == 1, "certificate");
  require(SSL_CTX_use_PrivateKey(tls.get(), key.get()) == 1, "key");
  return tls;
}

std::string inside_brackets(const std::string& command) {
  const std::size_t open = command.find('<');
  return command.substr(open + 1, command.find('>') - open - 1);
}

}  // namespace

// A connection, encrypted from some point on.
class SmtpSink::Stream {
 public:
  explicit Stream(int handle) : handle_(handle) {}

  bool is_encrypted() const { return ssl_ != nullptr; }

  bool encrypt() {
    tls_ = make_tls();
    ssl_.reset(SSL_new(tls_.get()), SSL_free);
    SSL_set_fd(ssl_.get(), handle_);
    buffer_.clear();
    return SSL_accept(ssl_.get()) == 1;
  }

  // Without its end; nothing if the connection is over.
  std::optional<std::string> line() {
    std::size_t end = 0;
    while ((end = buffer_.find("\r\n", searched_)) == std::string::npos) {
      searched_ = buffer_.empty() ? 0 : buffer_.size() - 1;
      char bytes[16384];
      const long size =
          ssl_ ? SSL_read(ssl_.get(), bytes, sizeof bytes) : ::recv(handle_, bytes, sizeof bytes, 0);
      if (size <= 0) return std::nullopt;
      buffer_.append(bytes, static_cast<std::size_t>(size));
    }
    std::string line = buffer_.substr(0, end);
    buffer_.erase(0, end + 2);
    searched_ = 0;
    return line;
  }

  bool write(std::string_view text) {
    const std::string bytes = std::string(text) + "\r\n";
    const long size = ssl_ ? SSL_write(ssl_.get(), bytes.data(), static_cast<int>(bytes.size()))
                           : ::send(handle_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    return size > 0;
  }

 private:
  int handle_;
  std::shared_ptr<SSL_CTX> tls_;
  std::shared_ptr<SSL> ssl_;
  std::string buffer_;
  std::size_t searched_ = 0;
};

SmtpSink::SmtpSink(Behaviour behaviour) : behaviour_(std::move(behaviour)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(behaviour_.port);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  const int on = 1;
  ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  require(::bind(listener_, generic, size) == 0, "bind");
  require(::listen(listener_, 8) == 0, "listen");
  require(::getsockname(listener_, generic, &size) == 0, "getsockname");
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

SmtpSink::~SmtpSink() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    ::shutdown(listener_, SHUT_RDWR);
    if (connection_ >= 0) ::shutdown(connection_, SHUT_RDWR);
  }
  ending_changed_.notify_all();
  thread_.join();
  ::close(listener_);
}

std::vector<SmtpSink::Mail> SmtpSink::mails() const {
  const std::lock_guard lock(mutex_);
  return mails_;
}

std::vector<std::string> SmtpSink::commands() const {
  const std::lock_guard lock(mutex_);
  return commands_;
}

void SmtpSink::serve() {
  // A client that has gone away must not end the test.
  sigset_t pipe;
  ::sigemptyset(&pipe);
  ::sigaddset(&pipe, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  for (;;) {
    const int handle = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    {
      const std::lock_guard lock(mutex_);
      connection_ = handle;
      if (ending_ || handle < 0) break;
    }
    converse(handle);
    const std::lock_guard lock(mutex_);
    connection_ = -1;
    ::close(handle);
  }
  if (connection_ >= 0) ::close(connection_);
}

void SmtpSink::converse(int handle) {
  Stream stream(handle);
  current_ = {};
  if (!reply(stream, "connect", "220 sink.example")) return;
  while (const std::optional<std::string> line = stream.line()) {
    {
      const std::lock_guard lock(mutex_);
      commands_.push_back(*line);
    }
    if (!take_command(stream, *line)) return;
  }
}

bool SmtpSink::take_command(Stream& stream, const std::string& line) {
  const std::string verb = line.substr(0, 4);
  if (verb == "EHLO") {
    const bool offer = behaviour_.offers_tls && !stream.is_encrypted();
    return reply(stream, line,
                 offer ? "250-sink.example\r\n250-STARTTLS\r\n250 SIZE 0" : "250-sink.example\r\n250 SIZE 0");
  }
  if (line == "STARTTLS")
    return reply(stream, line, "220 go on") && (behaviour_.replies.contains(line) || stream.encrypt());
  if (verb == "MAIL") {
    current_ = {
        .sender = inside_brackets(line), .recipients = {}, .data = {}, .encrypted = stream.is_encrypted()};
    return reply(stream, line, "250 sender ok");
  }
  if (verb == "RCPT") {
    current_.recipients.push_back(inside_brackets(line));
    return reply(stream, line, "250 recipient ok");
  }
  if (verb == "DATA") {
    const bool refuses = behaviour_.replies.contains("DATA");
    return reply(stream, line, "354 go on") && (refuses || take_mail(stream));
  }
  if (verb == "QUIT") return reply(stream, line, "221 bye") && false;
  return reply(stream, line, "250 ok");
}

bool SmtpSink::take_mail(Stream& stream) {
  while (const std::optional<std::string> line = stream.line()) {
    if (*line == ".") {
      if (!behaviour_.replies.contains(".")) {
        if (behaviour_.on_mail) behaviour_.on_mail(current_);
        const std::lock_guard lock(mutex_);
        mails_.push_back(current_);
      }
      return reply(stream, ".", "250 taken");
    }
    current_.data.append(*line, line->starts_with('.') ? 1 : 0).append("\r\n");
  }
  return false;
}

bool SmtpSink::reply(Stream& stream, std::string_view to, std::string_view usual) {
  if (!pause(behaviour_.delay)) return false;
  for (const auto& [beginning, other] : behaviour_.replies) {
    if (!to.starts_with(beginning)) continue;
    if (other == silence) pause(std::chrono::hours(1));
    return !other.empty() && other != silence && stream.write(other);
  }
  return stream.write(usual);
}

bool SmtpSink::pause(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return !ending_changed_.wait_for(lock, time, [this] { return ending_; });
}

}  // namespace zrl::test
