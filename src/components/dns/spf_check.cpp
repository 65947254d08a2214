#include "components/dns/spf_check.h"

#include <algorithm>
#include <chrono>

#include "components/dns/spf_record.h"
#include "core/text/domain_names.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::dns {

namespace {

using Family = IpAddress::Family;
using Mechanism = SpfDirective::Mechanism;

constexpr int most_lookups = 10;
constexpr int most_void_lookups = 2;
constexpr std::size_t most_names = 10;
constexpr std::size_t longest_explanation = 500;
constexpr std::string_view unknown_local_part = "postmaster";
constexpr std::string_view unknown_name = "unknown";

[[noreturn]] void fail_for_good(const std::string& description) {
  throw SenderFault(SenderResult::permerror, description);
}
[[noreturn]] void fail_for_now(const std::string& name) {
  throw SenderFault(SenderResult::temperror, "no answer from the DNS for " + name);
}

// check_host() requires a name of at least two labels (RFC 7208, section 4.3).
bool is_domain(std::string_view name) {
  return is_dns_name(name) && name.find('.') != name.npos;
}

bool is_at_or_below(std::string_view name, std::string_view domain) {
  if (!name.ends_with(domain)) return false;
  return name.size() == domain.size() || name[name.size() - domain.size() - 1] == '.';
}

std::string local_part_of(const std::string& sender) {
  const std::size_t at = sender.rfind('@');
  return at == 0 || at == sender.npos ? std::string(unknown_local_part) : sender.substr(0, at);
}

std::string domain_of_sender(const std::string& sender) {
  return sender.substr(sender.rfind('@') + 1);
}

class Evaluation {
 public:
  Evaluation(const SenderQuestion& question, SenderLookups& lookups)
      : question_(question), lookups_(lookups) {}

  SenderCheck run() {
    const Outcome outcome = evaluate(question_.record, question_.domain);
    std::string reason = std::string(name_of(outcome.result)) + ": " + outcome.reason;
    if (outcome.result == SenderResult::fail) reason += explanation(outcome);
    return {outcome.result == SenderResult::pass, reason + assumptions()};
  }

  // What the terms that were expanded needed to know of the mail, and the question does not say.
  std::string assumptions() const {
    std::string text;
    for (const std::string& assumed : assumed_) text += (text.empty() ? " (assumed: " : ", ") + assumed;
    return text.empty() ? text : text + ")";
  }

 private:
  struct Outcome {
    SenderResult result = SenderResult::none;
    std::string reason;
    std::optional<MacroString> explanation = {};
    std::string domain = {};  // whose record decided
  };

  static SpfRecord parse(const std::string& text, const std::string& domain) {
    try {
      return parse_spf_record(text);
    } catch (const SenderFault& fault) {
      fail_for_good(fault.what() + (" in the record of " + domain));
    }
  }

  Outcome evaluate(const std::string& text, const std::string& domain) {
    const SpfRecord record = parse(text, domain);
    for (const SpfDirective& directive : record.directives) {
      if (!matches(directive, domain)) continue;
      return {directive.result, directive.text + " in the record of " + domain, record.explanation, domain};
    }
    if (record.redirect) return redirected(*record.redirect, domain);
    return {SenderResult::neutral, "nothing in the record of " + domain + " matches"};
  }

  Outcome redirected(const MacroString& redirect, const std::string& domain) {
    count_lookup();
    const std::string target = expand(redirect, domain);
    return evaluate(record_of(target, "redirect=" + redirect.text()), target);
  }

  std::string record_of(const std::string& domain, const std::string& term) {
    std::optional<std::string> record = published_spf(domain, lookups_);
    if (!record) fail_for_good(term + " leads to " + domain + ", which has no SPF record");
    return *std::move(record);
  }

  bool matches(const SpfDirective& directive, const std::string& domain) {
    switch (directive.mechanism) {
      case Mechanism::all:
        return true;
      case Mechanism::ip4:
        return question_.client.in(directive.network, directive.prefix4);
      case Mechanism::ip6:
        return question_.client.in(directive.network, directive.prefix6);
      default:
        break;
    }
    count_lookup();
    const std::string target = directive.domain ? expand(*directive.domain, domain) : domain;
    switch (directive.mechanism) {
      case Mechanism::include:
        return included(directive, target);
      case Mechanism::a:
        return is_address(directive, target);
      case Mechanism::mx:
        return is_exchanger(directive, target);
      case Mechanism::ptr:
        return has_name(target);
      default:
        return exists(target);
    }
  }

  bool included(const SpfDirective& directive, const std::string& target) {
    return evaluate(record_of(target, directive.text), target).result == SenderResult::pass;
  }

  bool is_address(const SpfDirective& directive, const std::string& target) {
    const Records<IpAddress> addresses = lookups_.addresses({target}, question_.client.family()).front();
    if (addresses.failed) fail_for_now(target);
    if (addresses.found.empty()) count_void_lookup(target);
    return any_is_client(directive, addresses);
  }

  bool is_exchanger(const SpfDirective& directive, const std::string& target) {
    const Records<std::string> exchangers = lookups_.exchangers(target);
    if (exchangers.failed) fail_for_now(target);
    if (exchangers.found.empty()) count_void_lookup(target);
    if (exchangers.found.size() > most_names) fail_for_good(target + " has too many mail exchangers");
    const auto addresses = lookups_.addresses(exchangers.found, question_.client.family());
    for (std::size_t i = 0; i < addresses.size(); ++i) {
      if (addresses[i].failed) fail_for_now(exchangers.found[i]);
      if (any_is_client(directive, addresses[i])) return true;
    }
    return false;
  }

  bool has_name(const std::string& target) {
    const std::string domain = lower(target);
    const auto fits = [&](const std::string& name) { return is_at_or_below(lower(name), domain); };
    return std::ranges::any_of(validated_names(), fits);
  }

  bool exists(const std::string& target) {
    const Records<IpAddress> addresses = lookups_.addresses({target}, Family::v4).front();
    if (addresses.failed) fail_for_now(target);
    if (addresses.found.empty()) count_void_lookup(target);
    return !addresses.found.empty();
  }

  bool any_is_client(const SpfDirective& directive, const Records<IpAddress>& addresses) const {
    const bool is_v4 = question_.client.family() == Family::v4;
    const unsigned prefix = is_v4 ? directive.prefix4 : directive.prefix6;
    return std::ranges::any_of(
        addresses.found, [&](const IpAddress& address) { return question_.client.in(address, prefix); });
  }

  // The client's host names that have the client's address among their own. A failure yields no name.
  const std::vector<std::string>& validated_names() {
    if (validated_names_) return *validated_names_;
    validated_names_.emplace();
    Records<std::string> names = lookups_.names_of(question_.client);
    if (names.found.size() > most_names) names.found.resize(most_names);
    const auto addresses = lookups_.addresses(names.found, question_.client.family());
    for (std::size_t i = 0; i < addresses.size(); ++i) {
      if (std::ranges::find(addresses[i].found, question_.client) == addresses[i].found.end()) continue;
      validated_names_->push_back(names.found[i]);
    }
    if (names.found.empty() && !names.failed) count_void_lookup(question_.client.text());
    return *validated_names_;
  }

  // Prefers the domain itself, then a name below it, then any name. Only terms count as look-ups (RFC 7208,
  // section 4.6.4), and the names are looked up once.
  std::string validated_name(const std::string& domain) {
    std::string best(unknown_name);
    for (const std::string& name : validated_names()) {
      if (equals_ignoring_case(name, domain)) return name;
      const bool below = is_at_or_below(lower(best), lower(domain));
      if (best == unknown_name || (!below && is_at_or_below(lower(name), lower(domain)))) best = name;
    }
    return best;
  }

  MacroString::Values values(const std::string& domain) {
    return [this, &domain](char letter) -> std::string {
      const bool is_v4 = question_.client.family() == Family::v4;
      switch (letter) {
        case 's':
          return local_part_of(question_.sender) + "@" + domain_of_sender(question_.sender);
        case 'l':
          return local_part_of(question_.sender);
        case 'o':
        case 'h':
          return domain_of_sender(question_.sender);  // the greeting is not known
        case 'd':
          return domain;
        case 'i':
          return question_.client.dotted();
        case 'p':
          return validated_name(domain);
        case 'v':
          return is_v4 ? "in-addr" : "ip6";
        case 'c':
          return question_.client.text();
        case 't':
          return std::to_string(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
        default:
          return "unknown";  // 'r', the checking host, which no stranger needs to know
      }
    };
  }

  std::string expand(const MacroString& text, const std::string& domain) {
    const MacroString::Values known = values(domain);
    return text.expand_to_name([&](char letter) {
      const std::string found = known(letter);
      const std::string local_part = local_part_of(question_.sender);
      if ((letter == 's' || letter == 'l') && local_part == unknown_local_part) {
        assume("local part \"" + local_part + '"');
      }
      if (letter == 'h') assume("greeting \"" + found + '"');
      if (letter == 'p' && found == unknown_name) assume("host name \"" + found + '"');
      return found;
    });
  }

  void assume(const std::string& what) {
    if (std::ranges::find(assumed_, what) == assumed_.end()) assumed_.push_back(what);
  }

  // The domain's explanation to clients that fail (RFC 7208, section 6.2); empty if anything goes wrong.
  std::string explanation(const Outcome& outcome) {
    if (!outcome.explanation) return {};
    try {
      const Records<std::string> texts = lookups_.texts(expand(*outcome.explanation, outcome.domain));
      if (texts.failed || texts.found.size() != 1 || texts.found[0].size() > longest_explanation) return {};
      const auto text = MacroString::parse(texts.found[0], MacroString::Use::explanation);
      if (!text) return {};
      const std::string expanded = valid_utf8(text->expand(values(outcome.domain)));
      return expanded.empty() ? "" : " (" + expanded.substr(0, longest_explanation) + ")";
    } catch (const SenderFault&) {
      return {};
    }
  }

  void count_lookup() {
    if (++counted_lookups_ > most_lookups) fail_for_good("the record needs more than ten DNS look-ups");
  }
  void count_void_lookup(const std::string& name) {
    if (++void_lookups_ <= most_void_lookups) return;
    fail_for_good("too many DNS look-ups find nothing, the last one " + name);
  }

  const SenderQuestion& question_;
  SenderLookups& lookups_;
  int counted_lookups_ = 0;
  int void_lookups_ = 0;
  std::vector<std::string> assumed_;
  std::optional<std::vector<std::string>> validated_names_;
};

}  // namespace

SenderCheck check_spf(const SenderQuestion& question, SenderLookups& lookups) {
  if (!is_domain(question.domain)) return {false, "none: \"" + question.domain + "\" is no domain"};
  if (!is_spf_record(question.record)) return {false, "none: there is no SPF record"};
  Evaluation evaluation(question, lookups);
  try {
    return evaluation.run();
  } catch (const SenderFault& fault) {
    return {false, std::string(name_of(fault.result())) + ": " + fault.what() + evaluation.assumptions()};
  }
}

std::optional<std::string> published_spf(const std::string& domain, SenderLookups& lookups) {
  if (!is_domain(domain)) return std::nullopt;
  Records<std::string> texts = lookups.texts(domain);
  if (texts.failed) fail_for_now(domain);
  std::erase_if(texts.found, [](const std::string& text) { return !is_spf_record(text); });
  if (texts.found.size() > 1) fail_for_good(domain + " has several SPF records");
  if (texts.found.empty()) return std::nullopt;
  return texts.found.front();
}

}  // namespace zrl::dns
