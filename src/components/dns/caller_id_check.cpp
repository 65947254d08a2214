#include "components/dns/caller_id_check.h"

#include <algorithm>
#include <set>

#include "components/dns/caller_id_record.h"
#include "core/text/domain_names.h"
#include "core/text/text.h"

namespace zrl::dns {

namespace {

constexpr std::size_t most_domains = 10;
constexpr std::size_t most_exchangers = 10;

// The record at exactly this name.
std::optional<std::string> record_at(const std::string& name, SenderLookups& lookups) {
  Records<std::string> texts = lookups.texts(name);
  if (texts.failed) throw SenderFault(SenderResult::temperror, "no answer from the DNS for " + name);
  std::erase_if(texts.found, [](const std::string& text) { return !is_caller_id_record(text); });
  if (texts.found.size() > 1)
    throw SenderFault(SenderResult::permerror, name + " has several Caller-ID records");
  if (texts.found.empty()) return std::nullopt;
  return texts.found.front();
}

class Evaluation {
 public:
  Evaluation(const SenderQuestion& question, SenderLookups& lookups)
      : question_(question), lookups_(lookups) {}

  // The domains are followed in the order in which they were named.
  SenderCheck run() {
    const CallerIdRecord first = read(question_.record, question_.domain);
    const std::string note = first.testing ? " (the record is being tested)" : "";
    if (first.no_mail_servers) return {false, "fail: " + question_.domain + " sends no mail" + note};
    if (covers(first, question_.domain)) return passed(question_.domain, note);
    for (std::size_t i = 0; i < domains_.size(); ++i) {
      const std::string domain = domains_[i];
      if (covers(indirect_record(domain), domain)) return passed(domain, note);
    }
    if (fault_) throw SenderFault(*fault_);
    return {false, "fail: no server in the record of " + question_.domain + note};
  }

 private:
  static SenderCheck passed(const std::string& domain, const std::string& note) {
    return {true, "pass: in the record of " + domain + note};
  }

  // Also collects the domains that the record refers to.
  CallerIdRecord read(const std::string& text, const std::string& domain) {
    seen_.insert(lower(domain));
    try {
      CallerIdRecord record = parse_caller_id_record(text);
      for (const std::string& next : record.indirect) note_domain(next);
      return record;
    } catch (const Error& error) {
      throw SenderFault(SenderResult::permerror, error.what() + (" in the record of " + domain));
    }
  }

  void note_domain(const std::string& domain) {
    if (!seen_.insert(lower(domain)).second) return;
    if (domains_.size() < most_domains) {
      domains_.push_back(domain);
    } else {
      note({SenderResult::permerror, "the record leads to more than ten domains"});
    }
  }

  // The server of one domain may fail while another domain names the client.
  CallerIdRecord indirect_record(const std::string& domain) {
    try {
      std::optional<std::string> text = published_caller_id(domain, lookups_);
      // A name made for this purpose may have the record itself, not below _ep.
      if (!text && is_dns_name(domain)) text = record_at(domain, lookups_);
      if (text) return read(*text, domain);
      note({SenderResult::permerror, domain + " has no Caller-ID record"});
    } catch (const SenderFault& fault) {
      note(fault);
    }
    return {};
  }

  bool covers(const CallerIdRecord& record, const std::string& domain) {
    const auto holds_client = [&](const CallerIdRecord::Network& network) {
      return question_.client.in(network.address, network.prefix);
    };
    return std::ranges::any_of(record.networks, holds_client) || (record.exchangers && is_exchanger(domain));
  }

  bool is_exchanger(const std::string& domain) {
    Records<std::string> exchangers = lookups_.exchangers(domain);
    if (exchangers.found.size() > most_exchangers) exchangers.found.resize(most_exchangers);
    bool failed = exchangers.failed;
    for (const auto& addresses : lookups_.addresses(exchangers.found, question_.client.family())) {
      if (std::ranges::find(addresses.found, question_.client) != addresses.found.end()) return true;
      failed |= addresses.failed;
    }
    if (failed) note({SenderResult::temperror, "no answer from the DNS for the exchangers of " + domain});
    return false;
  }

  // The first of several faults is the one to report.
  void note(const SenderFault& fault) {
    if (!fault_) fault_ = fault;
  }

  const SenderQuestion& question_;
  SenderLookups& lookups_;
  std::vector<std::string> domains_;  // to be followed
  std::set<std::string> seen_;        // lower case
  std::optional<SenderFault> fault_;
};

}  // namespace

SenderCheck check_caller_id(const SenderQuestion& question, SenderLookups& lookups) {
  if (trim(question.record).empty()) return {false, "none: there is no Caller-ID record"};
  try {
    return Evaluation(question, lookups).run();
  } catch (const SenderFault& fault) {
    return {false, std::string(name_of(fault.result())) + ": " + fault.what()};
  }
}

std::optional<std::string> published_caller_id(const std::string& domain, SenderLookups& lookups) {
  const std::string name = "_ep." + domain;
  if (!is_dns_name(name)) return std::nullopt;
  return record_at(name, lookups);
}

}  // namespace zrl::dns
