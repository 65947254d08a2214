#include "net/dns_stream.h"

#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

#include "net/dns_socket.h"

namespace zrl {

namespace {

constexpr std::size_t length_size = 2;

// Also while the connection is being made.
bool must_wait(int error) {
  return error == EAGAIN || error == EINTR || error == EINPROGRESS;
}

}  // namespace

DnsStream::DnsStream(const DnsServer& server, DnsBytes query) {
  unsent_ = {static_cast<std::uint8_t>(query.size() >> 8), static_cast<std::uint8_t>(query.size() & 0xFF)};
  unsent_.insert(unsent_.end(), query.begin(), query.end());
  int error = 0;
  handle_ = connected_socket(server, SOCK_STREAM, error);
  if (!must_wait(error)) fail(error);
}

DnsStream::~DnsStream() {
  if (handle_ >= 0) ::close(handle_);
}

std::optional<std::vector<std::uint8_t>> DnsStream::take_answer() {
  send();
  while (receive()) {
    if (received_.size() < length_size) continue;
    const std::size_t length = length_size + received_[0] * std::size_t{256} + received_[1];
    if (received_.size() < length) continue;
    received_.resize(length);
    received_.erase(received_.begin(), received_.begin() + length_size);
    return std::move(received_);
  }
  return std::nullopt;
}

void DnsStream::send() {
  if (error_ != 0 || unsent_.empty()) return;
  const ssize_t sent = ::send(handle_, unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
  if (sent >= 0) {
    unsent_.erase(unsent_.begin(), unsent_.begin() + sent);
  } else if (!must_wait(errno)) {
    fail(errno);
  }
}

// False if nothing has arrived.
bool DnsStream::receive() {
  if (error_ != 0 || !unsent_.empty()) return false;
  std::uint8_t bytes[4096];
  const ssize_t size = ::recv(handle_, bytes, sizeof bytes, 0);
  if (size > 0) {
    received_.insert(received_.end(), bytes, bytes + size);
  } else if (size == 0) {
    fail(ECONNRESET);
  } else if (!must_wait(errno)) {
    fail(errno);
  }
  return size > 0;
}

void DnsStream::fail(int error) {
  if (error_ == 0) error_ = error;
}

}  // namespace zrl
