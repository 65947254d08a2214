#include "net/resolver.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>

#include "core/text/dns_answer.h"
#include "core/text/text.h"
#include "net/dns_stream.h"
#include "net/udp_socket.h"

namespace zrl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t default_timeout_ms = 10000;
constexpr std::int64_t shortest_timeout_ms = 100;
constexpr int pass_ms = 10;
constexpr std::size_t shortest_mail_domain = 5;
// So that a flood of datagrams can't keep a look-up from ending.
constexpr int most_datagrams_a_pass = 100;

std::string content_of(const std::filesystem::path& path) {
  constexpr std::size_t limit = std::size_t{1} << 20;
  std::ifstream file(path, std::ios::binary);
  std::string content(limit, '\0');
  file.read(content.data(), static_cast<std::streamsize>(limit));
  content.resize(static_cast<std::size_t>(file.gcount()));
  return content;
}

std::string_view last_two_labels(std::string_view domain) {
  const std::size_t last = domain.rfind('.');
  if (last == domain.npos || last == 0) return domain;
  const std::size_t previous = domain.rfind('.', last - 1);
  return previous == domain.npos ? domain : domain.substr(previous + 1);
}

// The answer that has come, if it is one to the query.
std::optional<std::vector<std::uint8_t>> take_answer(UdpSocket& socket, DnsBytes query) {
  for (int i = 0; i < most_datagrams_a_pass; ++i) {
    std::optional<std::vector<std::uint8_t>> message = socket.receive(dns_answer_limit);
    if (!message || is_dns_answer(*message, query)) return message;
  }
  return std::nullopt;
}

}  // namespace

std::string Resolver::lookup_mx(std::string_view domain) {
  mx_ = {};
  if (servers_.empty()) discover_dns_servers();
  std::string name(domain);
  for (;;) {
    if (name.size() < shortest_mail_domain) {
      conclude(name, {Outcome::not_asked, "the name is shorter than 5 characters", 0, {}}, false);
      return {};
    }
    Answer answer = ask(name, DnsType::mx);
    if (!answer.message.empty() && dns_answer_count(answer.message) > 0) {
      MailExchangers found = read_mail_exchangers(answer.message);
      conclude(name, std::move(answer), !found.list.empty());
      mx_ = std::move(found);
      return mx_.best;
    }
    const std::size_t dot = name.find('.');
    if (answer.message.empty() || dot == name.npos || !lies_below_local_parent(name)) {
      conclude(name, std::move(answer), false);
      return {};
    }
    name.erase(0, dot + 1);
  }
}

std::vector<std::string> Resolver::lookup_a(std::string_view host) {
  if (servers_.empty()) discover_dns_servers();
  const std::string name(host);
  Answer answer = ask(name, DnsType::a);
  std::vector<std::string> found = read_addresses(answer.message);
  conclude(name, std::move(answer), !found.empty());
  return found;
}

void Resolver::discover_dns_servers() {
  if (dns_timeout_ms_ == 0) {
    std::int64_t timeout = to_number(surroundings_.timeout_setting()).value_or(0);
    if (timeout == 0) timeout = default_timeout_ms;
    dns_timeout_ms_ = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(timeout, shortest_timeout_ms, std::numeric_limits<std::int32_t>::max()));
  }
  ResolverConfiguration configuration = parse_resolver_file(content_of(surroundings_.resolver_file()));
  servers_ = std::move(configuration.servers);
  local_domain_ = std::move(configuration.domain);
  local_parent_domain_ = last_two_labels(local_domain_);
}

// A message comes back whenever the server answered, with records or without.
Resolver::Answer Resolver::ask(const std::string& name, DnsType type) {
  const std::vector<std::uint8_t> query = make_dns_query(name, type);
  if (query.empty()) return {Outcome::not_asked, "this is not the name of a host or domain", 0, {}};
  if (servers_.empty()) return {Outcome::no_servers, "no DNS server is known", 0, {}};
  const DnsServer server = servers_.front();
  Answer answer = wait_for_answer(server, query);
  if (answer.message.empty()) return answer;
  const unsigned code = dns_response_code(answer.message);
  if (code == 3) {
    answer.outcome = Outcome::no_such_name;
    answer.problem = "there is no such name";
  } else if (code != 0) {
    answer.outcome = Outcome::server_failed;
    answer.problem = "the DNS server " + server.text() + " answered with error " + std::to_string(code);
  } else if (is_dns_truncated(answer.message)) {
    answer.outcome = Outcome::server_failed;
    answer.problem = "the DNS server " + server.text() + " gave a part of the answer only";
    if (dns_answer_count(answer.message) == 0) answer.message.clear();
  }
  return answer;
}

Resolver::Answer Resolver::wait_for_answer(const DnsServer& server, DnsBytes query) {
  UdpSocket socket(server);
  socket.send(query);
  std::optional<DnsStream> stream;  // once the answer has turned out to be truncated
  Answer answer{Outcome::found, {}, 0, {}};
  const Clock::time_point begin = Clock::now();
  for (std::int64_t pass = 1; socket.error() == 0; ++pass) {
    surroundings_.wait(std::chrono::milliseconds(pass_ms));
    if (!stream) {
      if (auto message = take_answer(socket, query)) {
        answer.message = std::move(*message);
        if (!is_dns_truncated(answer.message)) return answer;
        stream.emplace(server, query);
      }
    }
    if (stream) {
      if (auto message = stream->take_answer()) {
        if (is_dns_answer(*message, query)) answer.message = std::move(*message);
        return answer;
      }
      if (stream->error() != 0) return answer;
    }
    // The passes count, and so does the time: a pass may last longer while the console is busy.
    if (pass * pass_ms <= dns_timeout_ms_ && Clock::now() - begin <= dns_timeout()) continue;
    if (stream) return answer;
    return {Outcome::timed_out,
            "the DNS server " + server.text() + " gave no answer within " + std::to_string(dns_timeout_ms_) +
                " ms",
            0,
            {}};
  }
  return {Outcome::socket_failed,
          "the DNS server " + server.text() + " cannot be asked: " + std::strerror(socket.error()),
          static_cast<std::int16_t>(socket.error()),
          {}};
}

// True if the local parent domain occurs in the name behind its first character.
bool Resolver::lies_below_local_parent(std::string_view name) const {
  return !local_parent_domain_.empty() && lower(name).find(lower(local_parent_domain_), 1) != name.npos;
}

void Resolver::conclude(const std::string& name, Answer answer, bool found) {
  if (found) {
    answer = {Outcome::found, {}, 0, {}};
  } else if (answer.outcome == Outcome::found) {
    answer = {Outcome::no_records, "the answer has no record that was asked for", 0, {}};
  }
  current_query_name_ = name;
  outcome_ = answer.outcome;
  problem_ = std::move(answer.problem);
  last_dns_error_ = answer.error;
}

}  // namespace zrl
