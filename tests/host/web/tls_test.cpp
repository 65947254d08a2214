#include <cstdio>
#include <fstream>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include "host/web/handler_page.h"
#include "host/web/running_host.h"

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

// A certificate that signs itself, and its key, as PEM files.
void make_certificate(const std::filesystem::path& certificate, const std::filesystem::path& key) {
  const std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>> pair(EVP_EC_gen("P-256"));
  const std::unique_ptr<X509, Release<X509_free>> made(X509_new());
  X509_set_version(made.get(), X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(made.get()), 1);
  X509_gmtime_adj(X509_getm_notBefore(made.get()), 0);
  X509_gmtime_adj(X509_getm_notAfter(made.get()), 3600);
  X509_set_pubkey(made.get(), pair.get());
  X509_NAME* name = X509_get_subject_name(made.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"),
                             -1, -1, 0);
  X509_set_issuer_name(made.get(), name);
  X509_sign(made.get(), pair.get(), EVP_sha256());
  const std::unique_ptr<std::FILE, Release<std::fclose>> certificate_file(
      std::fopen(certificate.c_str(), "w"));
  PEM_write_X509(certificate_file.get(), made.get());
  const std::unique_ptr<std::FILE, Release<std::fclose>> key_file(std::fopen(key.c_str(), "w"));
  PEM_write_PrivateKey(key_file.get(), pair.get(), nullptr, nullptr, 0, nullptr, nullptr);
}

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
  make_certificate(options.certificate, options.key);
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
  make_certificate(options.certificate, options.key);
  std::ofstream(options.key) << "no key";
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
  // Nor is one of the two alone, or a key that belongs to another certificate.
  make_certificate(folder.path() / "other.pem", options.key);
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
  options.certificate.clear();
  EXPECT_THROW(RunningHost{options}, std::runtime_error);
}

}  // namespace

}  // namespace zrl::test
