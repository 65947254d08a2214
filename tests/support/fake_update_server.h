#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/loopback_server.h"

namespace zrl::test {

struct HttpRequest {
  std::string path;  // with its query
  std::string head;  // request line and headers as they came
};

// A web server that publishes what it is given, or answers as badly as it is told.
class FakeUpdateServer {
 public:
  // Sends the whole answer. The connection stays open if the result is true.
  using Answer = std::function<bool(const HttpRequest&, ServedConnection&)>;

  // Without a folder only what publish() and answer() name is there, else its files too.
  explicit FakeUpdateServer(std::filesystem::path folder = {}, const std::optional<TlsFiles>& tls = {},
                            std::uint16_t port = 0);

  // `path` begins with "/".
  void publish(const std::string& path, std::string content);
  void answer(const std::string& path, Answer answer);
  // The answer as bytes, after which the connection is closed.
  void answer_bytes(const std::string& path, std::string bytes);
  void redirect(const std::string& path, const std::string& to);

  // "http://127.0.0.1:PORT"
  std::string address() const;
  int connections() const { return server_.connections(); }
  std::vector<HttpRequest> requests();

 private:
  void serve(ServedConnection& connection);
  bool reply(const HttpRequest& request, ServedConnection& connection);

  std::filesystem::path folder_;
  std::string scheme_;
  std::mutex mutex_;
  std::map<std::string, Answer> answers_;
  std::vector<HttpRequest> requests_;
  LoopbackServer server_;  // the last member: it is in use until it is gone
};

// "HTTP/1.1 200 OK" with the length of the content.
std::string http_answer(std::string_view content, std::string_view more_headers = {});

}  // namespace zrl::test
