#include "downloader_fixture.h"

namespace zrl::downloader {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class TlsTest : public test::DownloaderTest {
 protected:
  test::TlsFiles certificate(const char* name) {
    const std::filesystem::path place = folder.path() / name;
    std::filesystem::create_directory(place);
    return test::make_certificate(place, name);
  }
};

TEST_F(TlsTest, OnlyServersWithATrustedCertificateForTheirNameAreBelieved) {
  const test::TlsFiles good = certificate("IP:127.0.0.1");
  const test::TlsFiles wrong = certificate("DNS:other.example");
  const struct {
    const test::TlsFiles& of_server;
    std::filesystem::path trusted;
    const char* result;
  } cases[] = {
      {good, good.certificate, "1 of 3"},
      {good, {}, "error: "},
      {good, wrong.certificate, "error: "},
      {wrong, wrong.certificate, "error: "},
  };
  for (const auto& [of_server, trusted, result] : cases) {
    test::FakeUpdateServer encrypted({}, of_server);
    encrypted.publish("/addblack.txt", "a.example\n");
    address = encrypted.address();
    options.certificates = trusted;
    EXPECT_THAT(update(), StartsWith(result)) << of_server.certificate << trusted;
    // Who is not believed is not asked either.
    EXPECT_EQ(encrypted.requests().empty(), std::string_view(result) == "error: ");
  }
}

TEST_F(TlsTest, AnEncryptedAddressIsNotLeftForAnOpenOne) {
  const test::TlsFiles files = certificate("IP:127.0.0.1");
  test::FakeUpdateServer encrypted({}, files);
  encrypted.publish("/delblack.txt", "");
  encrypted.redirect("/addblack.txt", server.address() + "/open");
  server.publish("/open", "evil.example\n");
  address = encrypted.address();
  options.certificates = files.certificate;
  EXPECT_THAT(update(), StartsWith("1 of 3"));
  EXPECT_THAT(failures(), StartsWith("addblack.txt: "));
  EXPECT_TRUE(server.requests().empty());
}

}  // namespace
}  // namespace zrl::downloader
