#include "host/sample/logs.h"

#include <algorithm>

#include "host/sample/rows.h"

namespace zrl::sample {

namespace {

using std::string_view;

constexpr std::size_t connections = 50000;
constexpr std::size_t decisions = 20000;
constexpr std::size_t hits = 5000;  // in each log of hits

enum Status { neutral = 0, white = 1, black = 2 };

// The frequent ones come first.
constexpr string_view reject_reasons[] = {
    "553 5.3.0 rejected - you have been RBL blacklisted",
    "553 5.3.0 rejected - your IP is blacklisted",
    "554 5.1.0 rejected - your domain has been blacklisted",
    "554 5.1.0 rejected - your email has been blacklisted",
    "554 5.1.0 rejected - your helo does not contain a dot",
    "550 5.7.1 Requested action not taken: mailbox name not allowed",
    "550 5.1.0 rejected - I dont like domains without MX record",
    "550 5.1.0 rejected - you are using my helo",
    "554 5.1.0 rejected - SPF authentication failed (http://spf.mirvan.example/)",
    "550 5.1.0 rejected - your sender domain is registered as my localdomain",
    "554 5.1.0 rejected - your helo is blacklisted",
    "550 5.1.0 rejected - sender does not contain any @",
    "550 5.1.0 rejected - I do not allow any NDRs",
    "550 5.1.0 rejected - your sender email is registered as my localmail",
    "550 5.1.0 rejected - Your HELO/EHLO contains IP Number which is illegal",
    "550 5.1.0 rejected - different from fields",
    "550 5.1.0 rejected - MIME and SMTP Sender are different",
    "550 5.1.0 rejected - CallerID authentication failed",
    "553 5.3.0 rejected - your IP has been blacklisted"};
constexpr string_view accept_reasons[] = {"IP is whitelisted", "sender is whitelisted",
                                          "sender domain is whitelisted",
                                          "domain is whitelisted by SPF authentication"};
constexpr string_view neutral_reasons[] = {
    "451 4.7.1 Please try again later - http://greylist.mirvan.example/", "passed after greylisting",
    "421 I am ready but destination Server not available, closing transmission channel",
    "550 5.7.1 Requested action not taken: domain name not allowed",
    "421 I am ready but Service not available, closing transmission channel"};
constexpr string_view attachment_reasons[] = {"550 5.1.0 rejected - file/s with illegal extension attached",
                                              "550 5.1.0 rejected - illegal file/s attached",
                                              "Worm.Sample.A",
                                              "Worm.Sample.B",
                                              "Trojan.Dropper.Made-Up",
                                              "Macro.Example.Document",
                                              "Exploit.Html.Example",
                                              "archive is encrypted",
                                              "Suspect.DoubleExtension",
                                              "archive holds an archive holds an archive holds an archive"};

// Senders and reasons that try what the viewer of a log does with them.
constexpr string_view hostile_senders[] = {
    "'; DROP TABLE blacklist; --@evil.invalid",
    "<img src=x onerror=alert(1)>@evil.invalid",
    "</td></tr></table><script>document.title='owned'</script>@evil.invalid",
    "o'brian.sample@apostrophe.test",
    "\x1b[2J\x1b[31mred\x07@terminal.invalid",
    "\u202emoc.elpmaxe@elbatsurt\u202c@evil.invalid",
    "line\r\nbreak: injected@evil.invalid",
    "tab\tand  blanks@evil.invalid",
    "first@second@third.invalid",
    "${jndi:lookup}@evil.invalid",
    "%00%n%s%x@evil.invalid",
    "\u05e9\u05dc\u05d5\u05dd@rtl.test",
    "\U0001F381\U0001F381\U0001F381@gifts.invalid",
    "no-at-sign",
    "\"'\\\"@evil.invalid",
    "=1+1@evil.invalid"};
constexpr string_view hostile_reason = "550 5.1.0 rejected - can't verify <b>sender</b> \"\u202etxet\u202c\"";

struct Visit {
  Moment moment;
  Status status;
  string_view host;
  string_view sender;
};

std::vector<Visit> make_visits(Generator& random, const Lists& lists, std::chrono::local_seconds end) {
  std::vector<Visit> visits;
  for (const Moment moment : busy_moments(random, connections, end)) {
    const std::size_t share = random.below(100);
    const Status status = share < 21 ? black : share < 29 ? white : neutral;
    const Texts& hosts = status == black   ? lists.black_hosts
                         : status == white ? lists.white_hosts
                                           : lists.neutral_hosts;
    const string_view host = random.pick_skewed(hosts);
    const Texts& senders = status == black   ? lists.black_senders
                           : status == white ? lists.white_senders
                                             : lists.unlisted_senders;
    visits.push_back({moment, status, host, random.pick_skewed(senders)});
  }
  return visits;
}

// `count` of the visits from the given place on, in the order of their times.
std::vector<Visit> chosen(const std::vector<Visit>& visits, const std::vector<std::size_t>& order,
                          std::size_t from, std::size_t count) {
  const auto begin = order.begin() + static_cast<std::ptrdiff_t>(from);
  std::vector<std::size_t> places(begin, begin + static_cast<std::ptrdiff_t>(count));
  std::sort(places.begin(), places.end());
  std::vector<Visit> result;
  result.reserve(count);
  for (const std::size_t place : places) result.push_back(visits[place]);
  return result;
}

string_view hostile_sender(std::size_t row) {
  return hostile_senders[row / 300 % std::size(hostile_senders)];
}

bool is_hostile(std::size_t row) {
  return row % 300 == 299;
}

std::string pre_data_sender(Generator& random, const Lists& lists, const Visit& visit, string_view reason) {
  if (reason.find("NDRs") != reason.npos) return {};
  if (reason.find("registered as my local") != reason.npos) return random.pick_skewed(lists.local_users);
  if (reason.find("any @") != reason.npos) return std::string(visit.sender.substr(0, visit.sender.find('@')));
  return std::string(visit.sender);
}

void write_ip_log(Connection& conn, const std::vector<Visit>& visits) {
  for (const Visit& visit : visits) {
    conn.execute("INSERT INTO iplog (IPNumber,status,servertime) VALUES ('" + value(visit.host) + "'," +
                 number(std::to_string(visit.status)) + ",'" + value(visit.moment.log_time()) + "')");
  }
}

void write_pre_data_log(Connection& conn, Generator& random, const Lists& lists,
                        const std::vector<Visit>& visits) {
  for (std::size_t row = 0; row < visits.size(); ++row) {
    const Visit& visit = visits[row];
    const string_view reason = visit.status == black   ? random.pick_skewed(reject_reasons)
                               : visit.status == white ? random.pick_skewed(accept_reasons)
                                                       : random.pick_skewed(neutral_reasons);
    const bool hostile = is_hostile(row);
    const std::string sender = hostile ? "#" : pre_data_sender(random, lists, visit, reason);
    conn.execute("INSERT INTO predatalog (IPNumber,mailfrom,reason,status,servertime) VALUES ('" +
                 value(visit.host) + "','" + value(sender) + "','" + value(reason) + "'," +
                 number(std::to_string(visit.status)) + ",'" + value(visit.moment.log_time()) + "')");
    if (!hostile) continue;
    const Statement select("SELECT * from predatalog where mailfrom='#'");
    if (row % 4200 == 299) {
      set_cells(conn, select, {{"reason", hostile_reason}, {"mailfrom", hostile_sender(row)}});
    } else {
      set_cells(conn, select, {{"mailfrom", hostile_sender(row)}});
    }
  }
}

// A log of hits: `what` is the column that holds what was found, taken from `found`.
template <typename Found>
void write_hits(Connection& conn, Generator& random, const Lists& lists, Literal table, Literal what,
                const Found& found, const std::vector<Visit>& visits) {
  for (std::size_t row = 0; row < visits.size(); ++row) {
    const Visit& visit = visits[row];
    const bool hostile = is_hostile(row);
    const string_view sender = hostile ? "#" : visit.sender;
    const string_view recipient = random.pick_skewed(lists.local_users);
    conn.execute("INSERT INTO " + table + " (IPNumber,mailfrom,mailto," + what + ",servertime) VALUES ('" +
                 value(visit.host) + "','" + value(sender) + "','" + value(recipient) + "','" +
                 value(random.pick_skewed(found)) + "','" + value(visit.moment.log_time()) + "')");
    if (hostile) {
      set_cells(conn, "SELECT * from " + table + " where mailfrom='#'", {{"mailfrom", hostile_sender(row)}});
    }
  }
}

}  // namespace

void write_logs(Connection& conn, const Lists& lists, std::chrono::local_seconds end, const Report& report) {
  Generator random(20260930);
  const std::vector<Visit> visits = make_visits(random, lists, end);
  write_ip_log(conn, visits);
  report("iplog", visits.size());

  // The proxy decides on every black host before the data; the others appear in the log less often.
  std::vector<std::size_t> order(visits.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  random.shuffle(order);
  const auto with = [&](Status status) {
    return [&, status](std::size_t i) { return visits[i].status == status; };
  };
  std::stable_partition(order.begin(), order.end(), with(black));
  write_pre_data_log(conn, random, lists, chosen(visits, order, 0, decisions));
  report("predatalog", decisions);

  // Only who passed came far enough to be caught later.
  std::stable_partition(order.begin(), order.end(), with(neutral));
  write_hits(conn, random, lists, "subjectlog", "keyword", lists.subject_keywords,
             chosen(visits, order, 0, hits));
  report("subjectlog", hits);
  write_hits(conn, random, lists, "bodylog", "keyword", lists.body_keywords,
             chosen(visits, order, hits, hits));
  report("bodylog", hits);
  write_hits(conn, random, lists, "avlog", "reason", attachment_reasons,
             chosen(visits, order, 2 * hits, hits));
  report("avlog", hits);
}

}  // namespace zrl::sample
