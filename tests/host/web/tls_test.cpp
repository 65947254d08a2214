#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include "host/web/handler_page.h"
#include "host/web/running_host.h"
#include "support/loopback_server.h"

namespace zrl::test {

namespace {

using ::testing::HasSubstr;

template <auto release>
struct Release {
  template <typename Type>
  void operator()(Type* object) const {
    release(object);
  }
};

class TlsConnection {
 public:
  // `ciphers` restricts it to TLS 1.2 with these.
  explicit TlsConnection(std::uint16_t port, const char* ciphers = nullptr)
      : connection_(port), context_(SSL_CTX_new(TLS_client_method())), tls_(SSL_new(context_.get())) {
    if (ciphers != nullptr) {
      SSL_set_max_proto_version(tls_.get(), TLS1_2_VERSION);
      SSL_set_cipher_list(tls_.get(), ciphers);
    }
    SSL_set_fd(tls_.get(), connection_.descriptor());
    is_open = SSL_connect(tls_.get()) == 1;
  }

  bool is_open = false;

  void write(const std::string& text) { SSL_write(tls_.get(), text.data(), static_cast<int>(text.size())); }
  // Empty at the end of the connection.
  std::string read() {
    char block[4096];
    const int count = SSL_read(tls_.get(), block, sizeof block);
    return count > 0 ? std::string(block, static_cast<std::size_t>(count)) : std::string();
  }
  // What tells the server's certificate from others.
  std::string fingerprint() const {
    const std::unique_ptr<X509, Release<X509_free>> certificate(SSL_get1_peer_certificate(tls_.get()));
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    unsigned size = 0;
    X509_digest(certificate.get(), EVP_sha256(), bytes.data(), &size);
    return {bytes.begin(), bytes.begin() + size};
  }

 private:
  TcpConnection connection_;
  std::unique_ptr<SSL_CTX, Release<SSL_CTX_free>> context_;
  std::unique_ptr<SSL, Release<SSL_free>> tls_;
};

// What the server answers over TLS, up to the end of the connection.
std::string ask_over_tls(std::uint16_t port, const std::string& request) {
  TlsConnection connection(port);
  if (!connection.is_open) return "no TLS";
  connection.write(request);
  std::string answer;
  for (std::string piece; !(piece = connection.read()).empty();) answer += piece;
  return answer;
}

TEST(Tls, ServesWithACertificate) {
  TemporaryFolder folder;
  web::WebHostOptions options{.pages = test_pages()};
  options.certificate = folder.path() / "certificate.pem";
  options.key = folder.path() / "key.pem";
  make_certificate(folder.path(), "DNS:localhost");
  RunningHost host(std::move(options));
  const std::string port = std::to_string(host.port());
  const std::string head = "Host: localhost:" + port + "\r\nConnection: close\r\n";
  EXPECT_THAT(ask_over_tls(host.port(), "GET /api/state HTTP/1.1\r\n" + head + "\r\n"),
              HasSubstr("\"setup\":true"));
  const std::string body = json::serialize(
      json::object{{"account", "admin"}, {"password", "correct horse"}, {"secret", host.secret}});
  const std::string setup = "POST /api/setup HTTP/1.1\r\n" + head + "Content-Type: application/json\r\n" +
                            "Content-Length: " + std::to_string(body.size()) + "\r\nOrigin: ";
  EXPECT_THAT(ask_over_tls(host.port(), setup + "http://localhost:" + port + "\r\n\r\n" + body),
              HasSubstr("403 Forbidden"));
  EXPECT_THAT(ask_over_tls(host.port(), setup + "https://localhost:" + port + "\r\n\r\n" + body),
              ::testing::AllOf(HasSubstr("SameSite=Strict; Secure\r\n"),
                               HasSubstr("Strict-Transport-Security: max-age=31536000\r\n")));
  // In TLS 1.2 no cipher in CBC mode, and none without forward secrecy.
  EXPECT_TRUE(TlsConnection(host.port(), "ECDHE-ECDSA-AES128-GCM-SHA256").is_open);
  EXPECT_FALSE(TlsConnection(host.port(), "ECDHE-ECDSA-AES128-SHA:ECDHE-ECDSA-AES256-SHA384").is_open);
  // Plain HTTP is not answered.
  WebClient plain(host.port());
  EXPECT_EQ(plain.get("/").status, 0);
}

TEST(Tls, AChangedCertificateIsUsedAndNothingEnds) {
  TemporaryFolder folder;
  web::WebHostOptions options{.pages = test_pages()};
  options.certificate = folder.path() / "certificate.pem";
  options.key = folder.path() / "key.pem";
  std::mutex mutex;
  std::vector<std::string> told;
  options.notify = [&](std::string_view line) {
    const std::scoped_lock lock(mutex);
    told.emplace_back(line);
  };
  make_certificate(folder.path(), "DNS:localhost");
  RunningHost host(std::move(options));
  TlsConnection old(host.port());
  const std::string request =
      "GET /api/state HTTP/1.1\r\nHost: localhost:" + std::to_string(host.port()) + "\r\n\r\n";
  const auto ask = [&] {
    old.write(request);
    std::string answer;
    for (std::string piece; !answer.ends_with('}') && !(piece = old.read()).empty();) answer += piece;
    return answer;
  };
  EXPECT_THAT(ask(), HasSubstr("200 OK"));

  make_certificate(folder.path(), "DNS:localhost");
  const auto fingerprint = [&] { return TlsConnection(host.port()).fingerprint(); };
  for (int i = 0; i < 100 && fingerprint() == old.fingerprint(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  const std::string second = fingerprint();
  EXPECT_NE(second, old.fingerprint());
  // One that cannot be used leaves the one before in use.
  std::ofstream(folder.path() / "key.pem") << "no key";
  host.host().reload();
  EXPECT_EQ(fingerprint(), second);
  EXPECT_THAT(ask(), HasSubstr("200 OK"));
  const std::scoped_lock lock(mutex);
  EXPECT_THAT(told, ::testing::Contains(HasSubstr("cannot use the key")));
}

TEST(Tls, ADoubtfulCertificateAndKeyAreWarnedOf) {
  TemporaryFolder folder;
  web::WebHostOptions options{.pages = test_pages()};
  options.certificate = folder.path() / "certificate.pem";
  options.key = folder.path() / "key.pem";
  make_certificate(folder.path(), "DNS:localhost", 30 * 24 * 3600L);
  std::filesystem::permissions(options.key, std::filesystem::perms(0640));
  EXPECT_THAT(RunningHost(options).host().warnings(), ::testing::IsEmpty());
  make_certificate(folder.path(), "DNS:localhost", -60);
  std::filesystem::permissions(options.key, std::filesystem::perms(0644));
  EXPECT_THAT(RunningHost(options).host().warnings(),
              ::testing::ElementsAre(HasSubstr("has expired"), HasSubstr("is open to every account")));
}

TEST(Tls, AnUnusableCertificateIsTold) {
  TemporaryFolder folder;
  web::WebHostOptions options{.pages = test_pages()};
  options.certificate = folder.path() / "certificate.pem";
  options.key = folder.path() / "key.pem";
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
  make_certificate(folder.path(), "DNS:localhost");
  std::ofstream(options.key) << "no key";
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
  // Nor is one of the two alone, or a key that belongs to another certificate.
  const std::filesystem::path other = folder.path() / "other";
  std::filesystem::create_directory(other);
  make_certificate(folder.path(), "DNS:localhost");
  options.key = make_certificate(other, "DNS:localhost").key;
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
  options.certificate.clear();
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
}

}  // namespace

}  // namespace zrl::test
