#include <cstdio>
#include <fstream>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>

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

// What the server answers over TLS, up to the end of the connection.
std::string ask_over_tls(std::uint16_t port, const std::string& request) {
  TcpConnection connection(port);
  const std::unique_ptr<SSL_CTX, Release<SSL_CTX_free>> context(SSL_CTX_new(TLS_client_method()));
  const std::unique_ptr<SSL, Release<SSL_free>> tls(SSL_new(context.get()));
  SSL_set_fd(tls.get(), connection.descriptor());
  if (SSL_connect(tls.get()) != 1) return "no TLS";
  SSL_write(tls.get(), request.data(), static_cast<int>(request.size()));
  std::string answer;
  char block[4096];
  for (int count = 0; (count = SSL_read(tls.get(), block, sizeof block)) > 0;) {
    answer.append(block, static_cast<std::size_t>(count));
  }
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
              HasSubstr("SameSite=Strict; Secure\r\n"));
  // Plain HTTP is not answered.
  WebClient plain(host.port());
  EXPECT_EQ(plain.get("/").status, 0);
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
