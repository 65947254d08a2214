#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "net/dns_message.h"
#include "net/resolver_file.h"

namespace zrl {

// A small stub resolver (RFC 1035) for mail exchangers and IPv4 addresses. It sends one query over UDP to the
// first server, without retransmission, and checks for the answer every 10 ms until the time-out. Datagrams
// from other senders, and those that are no answer to the query (is_dns_answer()), are ignored. An answer
// that is marked as truncated is asked for again over TCP, within the same time; if that fails, what the
// truncated one holds counts. There is no cache.
//
// Only what the functions of Surroundings raise is raised here. A look-up that finds nothing returns an empty
// result; outcome() and problem() then say why. Waiting may run other look-ups of the same resolver: each
// returns its own answer, and the state is that of the last one to end. One thread uses it.
class Resolver {
 public:
  // What the resolver needs of its console. `wait` is expected to serve the event loop.
  struct Surroundings {
    std::function<std::string()> timeout_setting;         // in milliseconds, a decimal number
    std::function<void(std::chrono::milliseconds)> wait;  // returns after this time
    std::function<std::filesystem::path()> resolver_file = resolver_file_path;
  };

  enum class Outcome : std::uint8_t {
    found,
    not_asked,      // there can be no such name, or it is too short
    no_servers,     // none is known
    socket_failed,  // last_dns_error() says how
    timed_out,
    no_such_name,
    server_failed,  // the server answered with an error, or with a part of the answer only
    no_records,     // the name exists, but has no such record that can be read
  };

  explicit Resolver(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}
  Resolver(const Resolver&) = delete;
  Resolver& operator=(const Resolver&) = delete;

  // The mail exchanger with the lowest preference, with a dot at its end, or empty. If a name inside the
  // local parent domain has no mail exchanger, its parent names are tried, each with a time-out of its own.
  // Names of fewer than 5 bytes are not asked for.
  std::string lookup_mx(std::string_view domain);
  // What the last lookup_mx() found, by ascending preference.
  const std::vector<MailExchanger>& mx_list() const { return mx_.list; }
  std::size_t mx_count() const { return mx_.list.size(); }
  const std::string& best_mx() const { return mx_.best; }

  // The IPv4 addresses of a host, dotted.
  std::vector<std::string> lookup_a(std::string_view host);

  // Reads the resolver file, of which the first MiB counts, and, once, the time-out: 10 seconds if the
  // setting is missing or 0, and at least 100 ms. Look-ups do this themselves while no server is known.
  void discover_dns_servers();
  const std::vector<DnsServer>& dns_servers() const { return servers_; }
  const std::string& local_domain() const { return local_domain_; }
  // The last two labels of the local domain.
  const std::string& local_parent_domain() const { return local_parent_domain_; }
  std::chrono::milliseconds dns_timeout() const { return std::chrono::milliseconds(dns_timeout_ms_); }

  // Of the last look-up: the name of its last query, the outcome, the outcome as English text for people
  // (empty if something was found), and the socket's error number (errno), 0 if there was none.
  const std::string& current_query_name() const { return current_query_name_; }
  Outcome outcome() const { return outcome_; }
  const std::string& problem() const { return problem_; }
  std::int16_t last_dns_error() const { return last_dns_error_; }

 private:
  struct Answer {
    Outcome outcome;
    std::string problem;
    std::int16_t error = 0;
    std::vector<std::uint8_t> message;  // empty if none came
  };

  Answer ask(const std::string& name, DnsType type);
  Answer wait_for_answer(const DnsServer& server, DnsBytes query);
  bool lies_below_local_parent(std::string_view name) const;
  void conclude(const std::string& name, Answer answer, bool found);

  Surroundings surroundings_;
  std::vector<DnsServer> servers_;
  std::string local_domain_;
  std::string local_parent_domain_;
  std::int32_t dns_timeout_ms_ = 0;
  MailExchangers mx_;
  std::string current_query_name_;
  Outcome outcome_ = Outcome::found;
  std::string problem_;
  std::int16_t last_dns_error_ = 0;
};

}  // namespace zrl
