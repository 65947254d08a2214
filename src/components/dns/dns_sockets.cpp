#include "components/dns/dns_sockets.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>

#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include "core/text/dns_answer.h"
#include "core/text/text.h"

namespace zrl::dns {

namespace {

constexpr bool refuses_names = ARES_VERSION >= 0x011c00;
constexpr std::size_t header_size = 12;
constexpr std::size_t counts_at = 6;  // of the records that follow the question
// c-ares accepts these in host names, although no host name contains them.
constexpr std::string_view marks = "/*";

bool is_plain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.';
}

// A backslash begins an escape.
std::string escaped(const std::string& name) {
  std::string result;
  for (const char c : name) {
    if (c == '\\') result += c;
    result += c;
  }
  return result;
}

std::string wire_name(std::string_view name) {
  std::string wire;
  while (!name.empty()) {
    const std::string_view label = name.substr(0, name.find('.'));
    wire += static_cast<char>(label.size());
    wire += label;
    name.remove_prefix(std::min(label.size() + 1, name.size()));
  }
  wire += '\0';
  return lower(wire);
}

std::string wire_question(const std::string& name, int type) {
  const char numbers[] = {static_cast<char>(type >> 8), static_cast<char>(type & 0xFF), 0, 1};
  return wire_name(name).append(numbers, sizeof numbers);
}

// The only question of a message; empty if it has several or none, or a malformed one.
std::string question_of(std::string_view message) {
  if (message.size() < header_size || message.substr(4, 2) != std::string_view("\0\1", 2)) return {};
  std::size_t end = header_size;
  while (end < message.size() && message[end] > 0 && message[end] < 64) {
    end += static_cast<std::size_t>(message[end]) + 1;
  }
  if (end + 5 > message.size() || message[end] != 0) return {};
  return lower(message.substr(header_size, end + 5 - header_size));
}

bool is_readable(std::string_view message) {
#if ARES_VERSION >= 0x011c00
  ares_dns_record_t* record = nullptr;
  const auto* data = reinterpret_cast<const unsigned char*>(message.data());
  const bool readable = ares_dns_parse(data, message.size(), 0, &record) == ARES_SUCCESS;
  ares_dns_record_destroy(record);
  return readable;
#else
  return !message.empty();
#endif
}

DnsBytes bytes_of(std::string_view message) {
  return {reinterpret_cast<const std::uint8_t*>(message.data()), message.size()};
}

DnsSockets& sockets(void* self) {
  return *static_cast<DnsSockets*>(self);
}

}  // namespace

void DnsSockets::attach(ares_channeldata* channel) {
  static const ares_socket_functions functions = {open, close, connect, receive, send};
  ares_set_socket_functions(channel, &functions, this);
}

std::string DnsSockets::asked_name(const std::string& name) {
  if (!refuses_names || std::ranges::all_of(name, is_plain)) return escaped(name);
  // Names that differ only in these characters share their stand-ins: two such characters yield four of them.
  const auto odd = static_cast<std::size_t>(std::ranges::count_if(name, std::not_fn(is_plain)));
  for (std::size_t number = 0; number < std::size_t{1} << std::min<std::size_t>(odd, 8); ++number) {
    std::string stand_in = name;
    std::size_t bits = number;
    for (char& c : stand_in) {
      if (is_plain(c)) continue;
      c = marks[bits & 1];
      bits >>= 1;
    }
    const auto [known, fresh] = names_.try_emplace(wire_name(stand_in), wire_name(name));
    if (fresh || known->second == wire_name(name)) return stand_in;
  }
  return escaped(name);
}

bool DnsSockets::was_malformed(const std::string& asked, int type) const {
  return malformed_.contains(wire_question(asked, type));
}

ares_socket_t DnsSockets::open(int domain, int type, int protocol, void* self) {
  const ares_socket_t socket = ::socket(domain, type | SOCK_NONBLOCK | SOCK_CLOEXEC, protocol);
  if (socket != ARES_SOCKET_BAD && type == SOCK_STREAM) sockets(self).streams_.insert(socket);
  return socket;
}

int DnsSockets::close(ares_socket_t socket, void* self) {
  sockets(self).streams_.erase(socket);
  return ::close(socket);
}

int DnsSockets::connect(ares_socket_t socket, const sockaddr* address, ares_socklen_t size, void*) {
  return ::connect(socket, address, size);
}

ares_ssize_t DnsSockets::receive(ares_socket_t socket, void* data, std::size_t size, int flags,
                                 sockaddr* from, ares_socklen_t* from_size, void* self) {
  const ares_socklen_t room = from_size == nullptr ? 0 : *from_size;
  while (true) {
    if (from_size != nullptr) *from_size = room;
    const ares_ssize_t got = ::recvfrom(socket, data, size, flags, from, from_size);
    if (got < 0 || sockets(self).streams_.contains(socket)) return got;
    std::string message(static_cast<const char*>(data), static_cast<std::size_t>(got));
    if (!sockets(self).admit(message)) continue;
    std::memcpy(data, message.data(), message.size());
    return static_cast<ares_ssize_t>(message.size());
  }
}

bool DnsSockets::admit(std::string& message) {
  const auto sent = sent_.find(message.substr(0, 2));
  if (sent == sent_.end() || question_of(message) != sent->second.sent) return false;
  if (!is_dns_answer(bytes_of(message), bytes_of(sent->second.query))) return false;
  const std::string& asked = sent->second.asked;
  message.replace(header_size, asked.size(), asked);
  if (!is_readable(message)) {
    malformed_.insert(asked);
    message.resize(header_size + asked.size());
    message.replace(counts_at, header_size - counts_at, header_size - counts_at, '\0');
  }
  return true;
}

ares_ssize_t DnsSockets::send(ares_socket_t socket, const iovec* parts, int count, void* self) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
  if (!sockets(self).streams_.contains(socket)) return sockets(self).send_message(socket, std::move(bytes));
  for (const auto& [stand_in, name] : sockets(self).names_) {
    if (bytes.find(stand_in) == bytes.npos) continue;
    errno = ECONNREFUSED;
    return -1;
  }
  return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

ares_ssize_t DnsSockets::send_message(ares_socket_t socket, std::string message) {
  const std::string asked = question_of(message);
  if (!asked.empty()) {
    std::string sent = asked;
    const auto name = names_.find(asked.substr(0, asked.size() - 4));
    if (name != names_.end()) sent.replace(0, name->second.size(), name->second);
    if (sent != asked) message.replace(header_size, sent.size(), sent);
    sent_[message.substr(0, 2)] = {sent, asked, message};
  }
  return ::send(socket, message.data(), message.size(), MSG_NOSIGNAL);
}

}  // namespace zrl::dns
