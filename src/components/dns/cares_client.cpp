#include <ares.h>

#include "components/dns/caller_id_check.h"
#include "components/dns/cares_lookups.h"
#include "components/dns/dns.h"
#include "components/dns/dns_answers.h"
#include "components/dns/spf_check.h"
#include "components/dns/spf_record.h"
#include "core/text/domain_names.h"
#include "core/text/error.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::dns {

namespace {

using std::chrono::milliseconds;

constexpr int type_ptr = 12;
// The least that a check should be given (RFC 7208, section 4.6.4).
constexpr milliseconds time_of_check{20'000};
constexpr std::size_t longest_reason = 1000;

[[noreturn]] void refuse(const std::string& problem) {
  throw Error(error_number::invalid_call, problem);
}

std::string domain_in(std::string_view text) {
  text = trim(text);
  if (text.ends_with('.')) text.remove_suffix(1);
  if (!is_dns_name(text)) refuse("not a domain: " + std::string(text));
  return std::string(text);
}

SenderQuestion question_of(std::string_view address, std::string_view domain, std::string_view record,
                           std::string_view sender) {
  const std::optional<IpAddress> client = IpAddress::parse(trim(address));
  if (!client) refuse("not an IP address: " + std::string(address));
  return {*client, domain_in(domain), std::string(trim(record)), std::string(trim(sender))};
}

// Reasons quote strangers' texts, so they are cut and made valid UTF-8.
SenderCheck for_people(SenderCheck check) {
  check.reason = valid_utf8(check.reason.substr(0, longest_reason));
  return check;
}

class CaresClient : public DnsClient {
 public:
  explicit CaresClient(ConsoleServices& console) : console_(console) {}

  std::string PTR_Query(std::string_view text) override {
    const std::optional<IpAddress> address = IpAddress::parse(trim(text), IpAddress::Family::v4);
    if (!address) refuse("not an IPv4 address: " + std::string(text));
    DnsQueries queries(console_);
    const DnsQueries::Reply& reply = queries[queries.start(address->reverse_name(), type_ptr)];
    queries.finish();
    std::vector<std::string> names;
    const int status = read_host_names(reply, *address, names);
    if (status == ARES_SUCCESS) return valid_utf8(names.front());
    throw Error(status, "no host name for " + std::string(text) + ": " + dns_status_text(status));
  }

  std::string get_spf_records(std::string_view domain) override {
    fetched_ = {};
    const std::string name = domain_in(domain);
    CaresLookups lookups = start();
    fetched_ = {name, name, valid_utf8(published_spf(name, lookups).value_or(""))};
    return fetched_.record;
  }

  std::string get_redirect(std::string_view text) override {
    const SpfRecord record = parse_spf_record(trim(text));
    if (!record.redirect) refuse("the record has no redirect");
    if (record.has_all()) refuse("the record's \"all\" leaves nothing to its redirect");
    const Fetched from = trim(text) == trim(fetched_.record) ? fetched_ : Fetched();
    const std::string target = target_of(*record.redirect, from);
    CaresLookups lookups = start();
    const std::optional<std::string> found = published_spf(target, lookups);
    if (!found) refuse(target + " has no SPF record");
    fetched_ = {from.domain, target, valid_utf8(*found)};
    return fetched_.record;
  }

  std::string get_cid_records(std::string_view domain) override {
    CaresLookups lookups = start();
    return valid_utf8(published_caller_id(domain_in(domain), lookups).value_or(""));
  }

  SenderCheck check_spf(std::string_view address, std::string_view domain, std::string_view record,
                        std::string_view sender) override {
    SenderQuestion question = question_of(address, domain, record, sender);
    const bool was_fetched = question.record == trim(fetched_.record);
    if (was_fetched && equals_ignoring_case(question.domain, fetched_.domain))
      question.domain = fetched_.place;
    CaresLookups lookups = start();
    return for_people(dns::check_spf(question, lookups));
  }

  SenderCheck check_cid(std::string_view address, std::string_view domain, std::string_view record,
                        std::string_view sender) override {
    const SenderQuestion question = question_of(address, domain, record, sender);
    CaresLookups lookups = start();
    return for_people(check_caller_id(question, lookups));
  }

 private:
  // The record that was fetched last.
  struct Fetched {
    std::string domain;  // for which it was fetched
    std::string place;   // where it was found, after redirects
    std::string record;
  };

  CaresLookups start() const { return {console_, time_of_check}; }

  // The target of a redirect in the record `from`, which is empty if the record's origin is unknown. Sender
  // and greeting are the client's.
  static std::string target_of(const MacroString& redirect, const Fetched& from) {
    return redirect.expand_to_name([&](char letter) -> std::string {
      if (letter == 'o' && !from.domain.empty()) return from.domain;
      if (letter == 'd' && !from.place.empty()) return from.place;
      refuse("where redirect=" + redirect.text() + " leads depends on the client");
    });
  }

  ConsoleServices& console_;
  Fetched fetched_;
};

}  // namespace

std::shared_ptr<DnsClient> make(ConsoleServices& console) {
  return std::make_shared<CaresClient>(console);
}

}  // namespace zrl::dns
