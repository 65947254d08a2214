#include "support/dns_server.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "core/text/text.h"

namespace zrl::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned error_type = 0x10000;   // no record type, but the code of an error
constexpr unsigned silent_type = 0x10001;  // no answer at all
constexpr unsigned cname_type = 5;
constexpr std::size_t header_size = 12;
constexpr int poll_ms = 5;

struct TypeName {
  std::string_view name;
  unsigned type;
};
constexpr std::array<TypeName, 8> type_names = {{{"A", 1},
                                                 {"CNAME", cname_type},
                                                 {"PTR", 12},
                                                 {"MX", 15},
                                                 {"TXT", 16},
                                                 {"AAAA", 28},
                                                 {"ERROR", error_type},
                                                 {"SILENT", silent_type}}};

std::string canonical(std::string_view name) {
  if (name.ends_with('.')) name.remove_suffix(1);
  return lower(name);
}

std::string reverse_name(const in_addr& address) {
  std::array<std::uint8_t, 4> bytes{};
  std::copy_n(reinterpret_cast<const std::uint8_t*>(&address), bytes.size(), bytes.begin());
  std::string name;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) name += std::to_string(*byte) + ".";
  return name + "in-addr.arpa";
}

// Texts of a TXT record are cut into strings of at most 255 bytes (RFC 1035, section 3.3.14).
std::string character_strings(std::string_view text) {
  constexpr std::size_t longest = 255;
  std::string data;
  do {
    const std::string_view part = text.substr(0, longest);
    data += static_cast<char>(part.size());
    data += part;
    text.remove_prefix(part.size());
  } while (!text.empty());
  return data;
}

std::string address_data(int family, const std::string& text) {
  std::array<char, 16> bytes{};
  if (::inet_pton(family, text.c_str(), bytes.data()) != 1) throw std::invalid_argument("address: " + text);
  return {bytes.data(), family == AF_INET ? std::size_t{4} : bytes.size()};
}

}  // namespace

class FakeDnsServer::Socket {
 public:
  explicit Socket(std::uint16_t port) : handle_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    // Room for a thousand queries at once, where the system allows it: sanitizers make the server slow.
    const int room = 4 << 20;
    ::setsockopt(handle_, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
    ::setsockopt(handle_, SOL_SOCKET, SO_RCVBUFFORCE, &room, sizeof room);
    if (::bind(handle_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      throw std::system_error(errno, std::generic_category(), "bind");
    }
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket() { ::close(handle_); }

  std::uint16_t port() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(handle_, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
  }
  bool readable(int wait_ms) const {
    pollfd polled{handle_, POLLIN, 0};
    return ::poll(&polled, 1, wait_ms) > 0;
  }
  DnsMessage receive(sockaddr_in& from) const {
    DnsMessage message(65536);
    socklen_t size = sizeof from;
    const ssize_t got =
        ::recvfrom(handle_, message.data(), message.size(), 0, reinterpret_cast<sockaddr*>(&from), &size);
    message.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return message;
  }
  void send(const DnsMessage& message, const sockaddr_in& to) const {
    ::sendto(handle_, message.data(), message.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
  }

 private:
  int handle_;
};

// Takes connections at the port, one at a time.
class FakeDnsServer::Listener {
 public:
  explicit Listener(std::uint16_t port)
      : handle_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    const int on = 1;
    ::setsockopt(handle_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (::bind(handle_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(handle_, 16) != 0) {
      throw std::system_error(errno, std::generic_category(), "bind");
    }
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() { ::close(handle_); }

  // Lets `answer` turn the one query of a connection, if one has come, into its answer; an empty one is not
  // sent. In two parts, as networks do it.
  void serve(const std::function<DnsMessage(const DnsMessage&)>& answer) const {
    const int connection = ::accept4(handle_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) return;
    const timeval patience{1, 0};
    ::setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::array<std::uint8_t, 2> length{};
    ::recv(connection, length.data(), length.size(), MSG_WAITALL);
    DnsMessage query(length[0] * 256U + length[1]);
    ::recv(connection, query.data(), query.size(), MSG_WAITALL);
    DnsMessage message = answer(query);
    if (!message.empty()) {
      const auto size = static_cast<unsigned>(message.size());
      message.insert(message.begin(),
                     {static_cast<std::uint8_t>(size >> 8), static_cast<std::uint8_t>(size & 0xFF)});
      ::send(connection, message.data(), 1, MSG_NOSIGNAL);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      ::send(connection, message.data() + 1, message.size() - 1, MSG_NOSIGNAL);
    }
    ::close(connection);
  }

 private:
  int handle_;
};

// Writes a message, names compressed against those that are already in it.
class FakeDnsServer::Writer {
 public:
  DnsMessage bytes;

  void number16(unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
  }
  void text(std::string_view data) { bytes.insert(bytes.end(), data.begin(), data.end()); }
  void name(std::string_view name) {
    while (!name.empty()) {
      const auto [known, fresh] = offsets_.try_emplace(lower(name), bytes.size());
      if (!fresh) return number16(0xC000U | static_cast<unsigned>(known->second));
      const std::string_view label = name.substr(0, name.find('.'));
      bytes.push_back(static_cast<std::uint8_t>(label.size()));
      text(label);
      name.remove_prefix(std::min(label.size() + 1, name.size()));
    }
    bytes.push_back(0);
  }
  void record(const std::string& owner, const Record& record) {
    name(owner);
    number16(record.type);
    number16(1);  // internet
    number16(0);  // time to live
    number16(300);
    const std::size_t length_at = bytes.size();
    number16(0);
    if (record.type == 15) number16(record.preference);
    if (record.is_name) {
      name(record.data);
    } else {
      text(record.data);
    }
    const std::size_t length = bytes.size() - length_at - 2;
    bytes[length_at] = static_cast<std::uint8_t>(length >> 8);
    bytes[length_at + 1] = static_cast<std::uint8_t>(length & 0xFF);
  }

 private:
  std::map<std::string, std::size_t> offsets_;
};

struct FakeDnsServer::Outbox {
  struct Sending {
    DnsMessage message;
    sockaddr_in to;
    const Socket* from;
  };
  std::multimap<Clock::time_point, Sending> sendings;
};

FakeDnsServer::FakeDnsServer(std::uint16_t port)
    : socket_(std::make_unique<Socket>(port)), liar_(std::make_unique<Socket>(0)), port_(socket_->port()) {
  // The TCP port of the same number may be another program's.
  for (int tries = 20; !listener_; --tries) {
    try {
      listener_ = std::make_unique<Listener>(port_);
    } catch (const std::system_error&) {
      if (port != 0 || tries == 0) throw;
      socket_ = std::make_unique<Socket>(0);
      port_ = socket_->port();
    }
  }
  thread_ = std::thread([this] { serve(); });
}

FakeDnsServer::~FakeDnsServer() {
  {
    const std::scoped_lock lock(mutex_);
    stopping_ = true;
  }
  thread_.join();
}

std::string FakeDnsServer::resolver_file() const {
  return "nameserver 127.0.0.1#" + std::to_string(port_) + "\n";
}

void FakeDnsServer::add(std::string_view line) {
  std::istringstream words{std::string(line)};
  std::string owner;
  std::string type_name;
  words >> owner >> type_name >> std::ws;
  const auto* type = std::find_if(type_names.begin(), type_names.end(),
                                  [&](const TypeName& known) { return known.name == type_name; });
  if (type == type_names.end()) throw std::invalid_argument("record: " + std::string(line));
  Record record{type->type, 0, {}, false};
  if (type_name == "MX" || type_name == "ERROR") words >> record.preference >> std::ws;
  std::getline(words, record.data);
  if (words.bad() || (record.data.empty() && record.type < error_type)) {
    throw std::invalid_argument("record: " + std::string(line));
  }
  if (type_name == "A") record.data = address_data(AF_INET, record.data);
  if (type_name == "AAAA") record.data = address_data(AF_INET6, record.data);
  if (type_name == "TXT") record.data = character_strings(record.data);
  record.is_name = type_name == "MX" || type_name == "PTR" || type_name == "CNAME";
  if (record.is_name && record.data.ends_with('.')) record.data.pop_back();
  in_addr address{};
  if (type_name == "PTR" && ::inet_pton(AF_INET, owner.c_str(), &address) == 1) owner = reverse_name(address);
  const std::scoped_lock lock(mutex_);
  records_[canonical(owner)].push_back(std::move(record));
}

void FakeDnsServer::set_manner(Manner manner) {
  const std::scoped_lock lock(mutex_);
  manner_ = std::move(manner);
}

std::vector<std::string> FakeDnsServer::queries() const {
  const std::scoped_lock lock(mutex_);
  return queries_;
}

DnsMessage FakeDnsServer::answer(const DnsMessage& query) const {
  const std::scoped_lock lock(mutex_);
  return compose(query, question_of(query));
}

FakeDnsServer::Question FakeDnsServer::question_of(const DnsMessage& query) {
  std::string name;
  std::size_t at = header_size;
  while (at < query.size() && query[at] != 0 && at + query[at] < query.size()) {
    const auto label = query.begin() + static_cast<std::ptrdiff_t>(at) + 1;
    name.append(label, label + query[at]).push_back('.');
    at += query[at] + std::size_t{1};
  }
  if (at + 4 >= query.size()) return {"", 0};
  return {canonical(name), query[at + 1] * 256U + query[at + 2]};
}

const std::vector<FakeDnsServer::Record>* FakeDnsServer::records_of(const std::string& name) const {
  const auto found = records_.find(name);
  return found == records_.end() ? nullptr : &found->second;
}

DnsMessage FakeDnsServer::compose(const DnsMessage& query, const Question& question) const {
  if (query.size() < header_size || question.type == 0) return {};
  Writer records;
  records.bytes.assign(header_size, 0);
  records.name(question.name);
  records.number16(question.type);
  records.number16(1);
  std::string name = question.name;
  unsigned error = records_of(name) == nullptr ? 3 : 0;
  unsigned count = 0;
  for (int aliases = 0; aliases < 16; ++aliases) {
    std::optional<std::string> alias;
    const std::vector<Record>* found = records_of(name);
    for (std::size_t i = 0; found != nullptr && i < found->size(); ++i) {
      const Record& record = (*found)[i];
      if (record.type == silent_type) return {};
      if (record.type == error_type) error = record.preference;
      if (record.type != question.type && record.type != cname_type) continue;
      records.record(name, record);
      ++count;
      if (record.type == cname_type && question.type != cname_type) alias = canonical(record.data);
    }
    if (!alias) break;
    name = *alias;
  }
  const std::array<unsigned, 6> header = {query[0] * 256U + query[1], 0x8180U | error, 1, count, 0, 0};
  for (std::size_t i = 0; i < header.size(); ++i) {
    records.bytes[2 * i] = static_cast<std::uint8_t>(header[i] >> 8);
    records.bytes[2 * i + 1] = static_cast<std::uint8_t>(header[i] & 0xFF);
  }
  return records.bytes;
}

void FakeDnsServer::serve() {
  Outbox outbox;
  for (;;) {
    if (socket_->readable(poll_ms)) receive(outbox);
    answer_stream();
    while (!outbox.sendings.empty() && outbox.sendings.begin()->first <= Clock::now()) {
      const Outbox::Sending& sending = outbox.sendings.begin()->second;
      sending.from->send(sending.message, sending.to);
      outbox.sendings.erase(outbox.sendings.begin());
    }
    const std::scoped_lock lock(mutex_);
    if (stopping_) return;
  }
}

void FakeDnsServer::receive(Outbox& outbox) {
  sockaddr_in from{};
  const DnsMessage query = socket_->receive(from);
  const Question question = question_of(query);
  const std::scoped_lock lock(mutex_);
  note_query(question, "");
  if (manner_.silent || manner_.lost-- > 0) return;
  manner_.lost = 0;
  DnsMessage message = compose(query, question);
  if (message.empty()) return;
  const auto due = Clock::now() + manner_.delay;
  if (manner_.lies) {
    // The lie: the same message, its last byte, which belongs to the last record, changed.
    DnsMessage lie = message;
    lie.at(lie.size() - 1) ^= 1;
    outbox.sendings.insert({Clock::now(), {lie, from, liar_.get()}});
    lie.at(0) ^= 0x40;
    outbox.sendings.insert({Clock::now(), {lie, from, socket_.get()}});
  }
  if (message.size() > manner_.room) {
    message.resize(manner_.room);
    message.at(2) |= 2;
  }
  if (manner_.forge) outbox.sendings.insert({Clock::now(), {manner_.forge(message), from, socket_.get()}});
  if (manner_.rewrite) message = manner_.rewrite(std::move(message));
  outbox.sendings.insert({due, {std::move(message), from, socket_.get()}});
}

void FakeDnsServer::answer_stream() {
  listener_->serve([this](const DnsMessage& query) {
    const Question question = question_of(query);
    const std::scoped_lock lock(mutex_);
    note_query(question, "TCP ");
    return manner_.closes_streams ? DnsMessage() : compose(query, question);
  });
}

void FakeDnsServer::note_query(const Question& question, std::string_view by) {
  const auto* type = std::find_if(type_names.begin(), type_names.end(),
                                  [&](const TypeName& known) { return known.type == question.type; });
  const std::string name = type == type_names.end() ? std::to_string(question.type) : std::string(type->name);
  queries_.push_back(std::string(by) + name + " " + question.name);
}

}  // namespace zrl::test
