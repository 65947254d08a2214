#include "support/fake_update_server.h"

#include <fstream>
#include <sstream>

namespace zrl::test {

namespace {

constexpr std::size_t longest_head = 64 << 10;

std::string in_full(const std::filesystem::path& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

}  // namespace

std::string http_answer(std::string_view content, std::string_view more_headers) {
  std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(content.size()) + "\r\n";
  return answer.append(more_headers).append("\r\n").append(content);
}

FakeUpdateServer::FakeUpdateServer(std::filesystem::path folder, const std::optional<TlsFiles>& tls,
                                   std::uint16_t port)
    : folder_(std::move(folder)),
      scheme_(tls ? "https" : "http"),
      server_([this](ServedConnection& connection) { serve(connection); }, tls, port) {}

void FakeUpdateServer::publish(const std::string& path, std::string content) {
  answer(path, [content = std::move(content)](const HttpRequest&, ServedConnection& connection) {
    return connection.send(http_answer(content));
  });
}

void FakeUpdateServer::answer(const std::string& path, Answer answer) {
  const std::lock_guard lock(mutex_);
  answers_[path] = std::move(answer);
}

void FakeUpdateServer::answer_bytes(const std::string& path, std::string bytes) {
  answer(path, [bytes = std::move(bytes)](const HttpRequest&, ServedConnection& connection) {
    connection.send(bytes);
    return false;
  });
}

void FakeUpdateServer::redirect(const std::string& path, const std::string& to) {
  answer(path, [to](const HttpRequest&, ServedConnection& connection) {
    return connection.send("HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + to + "\r\n\r\n");
  });
}

std::string FakeUpdateServer::address() const {
  return scheme_ + "://127.0.0.1:" + std::to_string(server_.port());
}

std::vector<HttpRequest> FakeUpdateServer::requests() {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void FakeUpdateServer::serve(ServedConnection& connection) {
  std::string bytes;
  for (;;) {
    std::size_t end = 0;
    while ((end = bytes.find("\r\n\r\n")) == bytes.npos) {
      const std::string more = connection.receive();
      if (more.empty() || bytes.size() > longest_head) return;
      bytes += more;
    }
    HttpRequest request;
    request.head = bytes.substr(0, end + 2);
    bytes.erase(0, end + 4);
    std::istringstream(request.head.substr(request.head.find(' ') + 1)) >> request.path;
    if (!reply(request, connection)) return;
  }
}

bool FakeUpdateServer::reply(const HttpRequest& request, ServedConnection& connection) {
  Answer answer;
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
    const auto found = answers_.find(request.path);
    if (found != answers_.end()) answer = found->second;
  }
  if (answer) return answer(request, connection);
  const std::filesystem::path file = folder_ / request.path.substr(1);
  if (!folder_.empty() && request.path.find("..") == std::string::npos &&
      std::filesystem::is_regular_file(file)) {
    return connection.send(http_answer(in_full(file)));
  }
  return connection.send("HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nNot here\n");
}

}  // namespace zrl::test
