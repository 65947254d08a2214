#include "host/web/web_client.h"

#include <array>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "core/text/text.h"

namespace zrl::test {

namespace {

HttpAnswer parse_head(std::string_view head) {
  HttpAnswer answer;
  if (head.size() < 12) return answer;
  answer.status = std::stoi(std::string(head.substr(9, 3)));
  for (std::size_t at = head.find("\r\n"); at != head.npos;) {
    const std::size_t begin = at + 2;
    at = head.find("\r\n", begin);
    const std::string_view line = head.substr(begin, at == head.npos ? head.npos : at - begin);
    const std::size_t colon = line.find(':');
    if (colon == line.npos) continue;
    const std::string name = lower(line.substr(0, colon));
    const std::string value(trim(line.substr(colon + 1)));
    if (name == "set-cookie") answer.cookies.push_back(value);
    answer.headers[name] = value;
  }
  return answer;
}

// Reads one answer; what follows it stays in `buffer`.
HttpAnswer read_answer(TcpConnection& connection, std::string& buffer) {
  std::size_t end = std::string::npos;
  while ((end = buffer.find("\r\n\r\n")) == std::string::npos) {
    const std::string more = connection.read();
    if (more.empty()) return {};
    buffer += more;
  }
  HttpAnswer answer = parse_head(std::string_view(buffer).substr(0, end));
  buffer.erase(0, end + 4);
  if (answer.status == 101) return answer;
  const std::size_t length = std::stoul("0" + answer.headers["content-length"]);
  while (buffer.size() < length) {
    const std::string more = connection.read();
    if (more.empty()) break;
    buffer += more;
  }
  answer.body = buffer.substr(0, length);
  buffer.erase(0, length);
  return answer;
}

}  // namespace

TcpConnection::TcpConnection(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const timeval limit{patience.count(), 0};
  ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect");
  }
}

TcpConnection::TcpConnection(TcpConnection&& other) noexcept : socket_(std::exchange(other.socket_, -1)) {}

TcpConnection::~TcpConnection() {
  if (socket_ >= 0) ::close(socket_);
}

bool TcpConnection::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string TcpConnection::read() {
  std::array<char, 65536> block{};
  const ssize_t count = ::recv(socket_, block.data(), block.size(), 0);
  if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
    throw std::runtime_error("the server is silent");
  return count <= 0 ? std::string() : std::string(block.data(), static_cast<std::size_t>(count));
}

std::string WebClient::head(std::string_view method, std::string_view path,
                            std::string_view more_headers) const {
  std::string text(method);
  text.append(" ").append(path).append(" HTTP/1.1\r\nHost: ").append(host_).append("\r\nOrigin: http://");
  text.append(host_).append("\r\n");
  if (!cookie.empty() || !device.empty()) {
    text.append("Cookie: other=1; zrl_session=").append(cookie).append("; zrl_device=").append(device);
    text.append("\r\n");
  }
  return text.append(more_headers);
}

HttpAnswer WebClient::raw(std::string_view request) {
  TcpConnection connection(port_);
  connection.write(request);
  std::string buffer;
  return read_answer(connection, buffer);
}

HttpAnswer WebClient::get(std::string_view path, std::string_view more_headers) {
  return raw(head("GET", path, more_headers) + "\r\n");
}

HttpAnswer WebClient::post(std::string_view path, const json::value& body) {
  const std::string text = json::serialize(body);
  HttpAnswer answer = raw(head("POST", path, "Content-Type: application/json\r\nContent-Length: ") +
                          std::to_string(text.size()) + "\r\n\r\n" + text);
  for (const std::string& set : answer.cookies) {
    const std::string value = set.substr(set.find('=') + 1, set.find(';') - set.find('=') - 1);
    if (set.starts_with("zrl_session=")) cookie = value;
    if (set.starts_with("zrl_device=")) device = value;
  }
  return answer;
}

WebSocket::WebSocket(WebClient& client, std::string_view query) : connection_(client.port()) {
  connection_.write(client.head("GET", "/ws" + std::string(query),
                                "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                                "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n"));
  status = read_answer(connection_, buffer_).status;
}

void WebSocket::send_frame(int opcode, std::string_view payload) {
  std::string frame(1, static_cast<char>(0x80 | opcode));
  if (payload.size() < 126) {
    frame += static_cast<char>(0x80 | payload.size());
  } else if (payload.size() < 65536) {
    frame += static_cast<char>(0x80 | 126);
    for (int shift = 8; shift >= 0; shift -= 8) frame += static_cast<char>(payload.size() >> shift & 0xFF);
  } else {
    frame += static_cast<char>(0x80 | 127);
    for (int shift = 56; shift >= 0; shift -= 8) frame += static_cast<char>(payload.size() >> shift & 0xFF);
  }
  frame.append(4, '\0');  // a mask of zeros leaves the payload as it is
  broken = !connection_.write(frame.append(payload)) || broken;
}

bool WebSocket::fill(std::size_t bytes) {
  while (buffer_.size() < bytes) {
    const std::string more = connection_.read();
    if (more.empty()) return false;
    buffer_ += more;
  }
  return true;
}

std::optional<WebSocket::Frame> WebSocket::read_frame() {
  if (!fill(2)) return {};
  const int opcode = static_cast<unsigned char>(buffer_[0]) & 0x0F;
  std::uint64_t length = static_cast<unsigned char>(buffer_[1]) & 0x7F;
  std::size_t head = 2;
  if (length >= 126) {
    const std::size_t bytes = length == 126 ? 2 : 8;
    if (!fill(2 + bytes)) return {};
    length = 0;
    for (std::size_t i = 0; i < bytes; ++i) length = length << 8 | static_cast<unsigned char>(buffer_[2 + i]);
    head += bytes;
  }
  if (!fill(head + length)) return {};
  Frame frame{(buffer_[0] & 0x80) != 0, opcode, buffer_.substr(head, length)};
  buffer_.erase(0, head + length);
  return frame;
}

std::optional<std::string> WebSocket::next_text() {
  std::string text;
  while (!closed_) {
    const std::optional<Frame> frame = read_frame();
    if (!frame) {
      closed_ = true;
    } else if (frame->opcode == 8) {
      if (frame->payload.size() >= 2) {
        close_code_ = static_cast<unsigned char>(frame->payload[0]) << 8 |
                      static_cast<unsigned char>(frame->payload[1]);
      }
      send_frame(8, frame->payload);
      closed_ = true;
    } else if (frame->opcode <= 1) {
      text += frame->payload;
      if (frame->last) return text;
    }
  }
  return {};
}

int WebSocket::close_code() {
  while (receive()) continue;
  return close_code_;
}

}  // namespace zrl::test
