#include "components/dns/dns_queries.h"

#include <algorithm>
#include <array>

#include <ares.h>
#include <poll.h>

#include "components/dns/dns_sockets.h"
#include "core/contracts/name_lookup.h"
#include "core/text/error.h"

namespace zrl::dns {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr int class_internet = 1;
constexpr int tries = 3;
// c-ares doubles its time-out with each try: 1 + 2 + 4.
constexpr int shares = 7;
// How long the sockets are watched before the event loop is served again.
constexpr milliseconds watch{9};
constexpr milliseconds serve{1};

void check(int status) {
  if (status != ARES_SUCCESS) throw Error(status, "DNS look-up: " + dns_status_text(status));
}

void initialise_library() {
  static const int status = ares_library_init(ARES_LIB_INIT_ALL);
  check(status);
}

// One list for c-ares, which refuses a whole list for one server with an interface ("fe80::1%eth0").
std::string joined(const std::vector<std::string>& servers) {
  std::string result;
  for (const std::string& server : servers) {
    if (server.find('%') != server.npos) continue;
    result.append(result.empty() ? "" : ",").append(server);
  }
  return result;
}

}  // namespace

DnsQueries::DnsQueries(ConsoleServices& console, milliseconds limit)
    : console_(console), sockets_(std::make_unique<DnsSockets>()) {
  initialise_library();
  NameLookup& names = console_.names();
  const std::string servers = joined(names.servers());
  if (servers.empty()) throw Error(ARES_ESERVFAIL, "no DNS server is known");
  timeout_ = std::min(limit, names.time_out());
  ares_options options{};
  options.flags = ARES_FLAG_NOSEARCH | ARES_FLAG_NOALIASES;
  options.timeout = std::max(1, static_cast<int>(timeout_.count() / shares));
  options.tries = tries;
  // The servers are set explicitly; nothing is to be read from the system's configuration.
  std::string nowhere = "/dev/null";
  std::string dns_only = "b";
  options.resolvconf_path = nowhere.data();
  options.lookups = dns_only.data();
  check(ares_init_options(
      &channel_, &options,
      ARES_OPT_FLAGS | ARES_OPT_TIMEOUTMS | ARES_OPT_TRIES | ARES_OPT_RESOLVCONF | ARES_OPT_LOOKUPS));
  sockets_->attach(channel_);
  const int status = ares_set_servers_ports_csv(channel_, servers.c_str());
  if (status != ARES_SUCCESS) ares_destroy(channel_);
  check(status);
}

DnsQueries::~DnsQueries() {
  ares_destroy(channel_);
}

std::size_t DnsQueries::start(const std::string& name, int type) {
  Pending& pending = pending_.emplace_back(Pending{{}, this, sockets_->asked_name(name), type});
  ++unfinished_;
  ares_query(channel_, pending.asked.c_str(), class_internet, type, ended, &pending);
  return pending_.size() - 1;
}

void DnsQueries::pause() {
  console_.wait(serve);
  process(milliseconds(0));
}

// Polls the sockets between the turns of the event loop, so that an answer is processed as soon as it comes.
void DnsQueries::finish() {
  const Clock::time_point end = Clock::now() + timeout_;
  process(milliseconds(0));
  bool ending = false;
  while (unfinished_ > 0 && !ending && Clock::now() < end) {
    process(watch);
    if (unfinished_ > 0) ending = !serve_events();
  }
  ares_cancel(channel_);
}

// False if the console is ending, because its wait() then returns at once.
bool DnsQueries::serve_events() {
  const Clock::time_point begin = Clock::now();
  console_.wait(serve);
  return 2 * (Clock::now() - begin) >= serve;
}

void DnsQueries::ended(void* pending, int status, int, unsigned char* message, int size) {
  Pending& ended = *static_cast<Pending*>(pending);
  if (status == ARES_ECANCELLED) status = ARES_ETIMEOUT;
  const bool answered = status == ARES_SUCCESS || status == ARES_ENODATA;
  if (answered && ended.owner->sockets_->was_malformed(ended.asked, ended.type)) status = ARES_EBADRESP;
  ended.reply.status = status;
  if (status == ARES_SUCCESS && size > 0) ended.reply.message.assign(message, message + size);
  --ended.owner->unfinished_;
}

// Processes the answers that have come, after waiting at most this long for the first one, and time-outs.
void DnsQueries::process(milliseconds wait) {
  std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> sockets{};
  std::array<pollfd, ARES_GETSOCK_MAXNUM> polled{};
  const auto wanted =
      static_cast<unsigned>(ares_getsock(channel_, sockets.data(), static_cast<int>(sockets.size())));
  nfds_t count = 0;
  for (unsigned i = 0; i < ARES_GETSOCK_MAXNUM; ++i) {
    const bool readable = ARES_GETSOCK_READABLE(wanted, i) != 0;
    const bool writable = ARES_GETSOCK_WRITABLE(wanted, i) != 0;
    if (!readable && !writable) break;
    const int events = (readable ? POLLIN : 0) | (writable ? POLLOUT : 0);
    polled[count++] = {sockets[i], static_cast<short>(events), 0};
  }
  if (::poll(polled.data(), count, static_cast<int>(wait.count())) > 0) {
    for (const pollfd& socket : polled) {
      if (socket.revents == 0) continue;
      const bool writable = (socket.revents & POLLOUT) != 0;
      const bool readable = (socket.revents & ~POLLOUT) != 0;
      ares_process_fd(channel_, readable ? socket.fd : ARES_SOCKET_BAD,
                      writable ? socket.fd : ARES_SOCKET_BAD);
    }
  }
  ares_process_fd(channel_, ARES_SOCKET_BAD, ARES_SOCKET_BAD);
}

std::string dns_status_text(int status) {
  return ares_strerror(status);
}

}  // namespace zrl::dns
