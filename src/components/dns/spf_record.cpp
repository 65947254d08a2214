#include "components/dns/spf_record.h"

#include <algorithm>
#include <array>

#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::dns {

namespace {

using Mechanism = SpfDirective::Mechanism;

constexpr std::string_view version = "v=spf1";

struct MechanismName {
  std::string_view name;
  Mechanism mechanism;
};
constexpr std::array<MechanismName, 8> mechanism_names = {{{"all", Mechanism::all},
                                                           {"include", Mechanism::include},
                                                           {"a", Mechanism::a},
                                                           {"mx", Mechanism::mx},
                                                           {"ptr", Mechanism::ptr},
                                                           {"ip4", Mechanism::ip4},
                                                           {"ip6", Mechanism::ip6},
                                                           {"exists", Mechanism::exists}}};

[[noreturn]] void refuse(std::string_view problem, std::string_view term) {
  constexpr std::size_t longest = 80;
  const std::string shown = valid_utf8(term.substr(0, longest)) + (term.size() > longest ? "..." : "");
  throw SenderFault(SenderResult::permerror, std::string(problem) + " \"" + shown + "\"");
}

// name = ALPHA *( ALPHA / DIGIT / "-" / "_" / "." )
bool is_modifier_name(std::string_view name) {
  const std::string small = lower(name);
  return !small.empty() && small.front() >= 'a' && small.front() <= 'z' &&
         small.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-_.") == small.npos;
}

// Removes a slash (`slashes` is "/" or "//") and a number without leading zeros from the end of the term's
// argument, and returns the number; nothing if there is none.
std::optional<unsigned> take_prefix(std::string_view& argument, std::string_view slashes, unsigned greatest,
                                    std::string_view term) {
  constexpr std::size_t most_digits = 3;
  const std::size_t last = argument.find_last_not_of("0123456789");
  if (last == argument.npos || argument[last] != '/') return std::nullopt;
  const std::string_view digits = argument.substr(last + 1);
  const std::string_view before = argument.substr(0, last + 1);
  if (digits.empty() || before.ends_with("//") != (slashes == "//")) return std::nullopt;
  const bool leading_zero = digits.size() > 1 && digits.front() == '0';
  if (leading_zero || digits.size() > most_digits) refuse("bad prefix length in", term);
  const auto prefix = static_cast<unsigned>(std::stoul(std::string(digits)));
  if (prefix > greatest) refuse("bad prefix length in", term);
  argument.remove_suffix(digits.size() + slashes.size());
  return prefix;
}

// domain-spec
MacroString domain_spec(std::string_view text, std::string_view term) {
  std::optional<MacroString> domain = MacroString::parse(text, MacroString::Use::domain);
  if (!domain) refuse("bad domain in", term);
  return *std::move(domain);
}

class DirectiveParser {
 public:
  // directive = [ qualifier ] mechanism
  explicit DirectiveParser(std::string_view term) : term_(term), rest_(term) {
    directive.text = term;
    directive.result = qualifier();
    const std::size_t end = std::min(rest_.find_first_of(":/"), rest_.size());
    const std::string name = lower(rest_.substr(0, end));
    const auto* known = std::ranges::find(mechanism_names, name, &MechanismName::name);
    if (known == mechanism_names.end()) refuse("unknown mechanism", term_);
    directive.mechanism = known->mechanism;
    rest_.remove_prefix(end);
    arguments();
  }

  SpfDirective directive;

 private:
  // qualifier = "+" / "-" / "?" / "~"
  SenderResult qualifier() {
    constexpr std::array<SenderResult, 4> results = {SenderResult::pass, SenderResult::fail,
                                                     SenderResult::neutral, SenderResult::softfail};
    const std::size_t which = std::string_view("+-?~").find(rest_.substr(0, 1));
    if (rest_.empty() || which == std::string_view::npos) return SenderResult::pass;
    rest_.remove_prefix(1);
    return results.at(which);
  }

  void arguments() {
    switch (directive.mechanism) {
      case Mechanism::all:
        return end();
      case Mechanism::include:
      case Mechanism::exists:
        return domain();
      case Mechanism::ptr:
        return optional_domain();
      case Mechanism::a:
      case Mechanism::mx:
        return domain_and_prefixes();
      case Mechanism::ip4:
        return network(IpAddress::Family::v4, directive.prefix4);
      case Mechanism::ip6:
        return network(IpAddress::Family::v6, directive.prefix6);
    }
  }

  // all = "all"
  void end() {
    if (!rest_.empty()) refuse("bad argument of", term_);
  }

  // include = "include" ":" domain-spec
  // exists = "exists" ":" domain-spec
  void domain() {
    if (rest_.empty()) refuse("no domain in", term_);
    optional_domain();
  }

  // ptr = "ptr" [ ":" domain-spec ]
  void optional_domain() {
    if (rest_.empty()) return;
    if (rest_.front() != ':') refuse("bad argument of", term_);
    directive.domain = domain_spec(rest_.substr(1), term_);
  }

  // a = "a" [ ":" domain-spec ] [ dual-cidr-length ]
  // dual-cidr-length = [ ip4-cidr-length ] [ "/" ip6-cidr-length ]
  void domain_and_prefixes() {
    if (const auto prefix = take_prefix(rest_, "//", 128, term_)) directive.prefix6 = *prefix;
    if (const auto prefix = take_prefix(rest_, "/", 32, term_)) directive.prefix4 = *prefix;
    optional_domain();
  }

  // ip4 = "ip4" ":" ip4-network [ ip4-cidr-length ]
  // ip6 = "ip6" ":" ip6-network [ ip6-cidr-length ]
  void network(IpAddress::Family family, unsigned& prefix) {
    if (!rest_.starts_with(':')) refuse("no address in", term_);
    prefix = take_prefix(rest_, "/", IpAddress::bits(family), term_).value_or(IpAddress::bits(family));
    const std::optional<IpAddress> address = IpAddress::parse(rest_.substr(1), family);
    if (!address) refuse("bad address in", term_);
    directive.network = *address;
  }

  std::string_view term_;
  std::string_view rest_;
};

// redirect = "redirect" "=" domain-spec
// explanation = "exp" "=" domain-spec
void set_once(std::optional<MacroString>& modifier, std::string_view value, std::string_view term) {
  if (modifier) refuse("repeated modifier", term);
  modifier = domain_spec(value, term);
}

// modifier = redirect / explanation / unknown-modifier
// unknown-modifier = name "=" macro-string
void add_modifier(SpfRecord& record, std::string_view name, std::string_view value, std::string_view term) {
  if (equals_ignoring_case(name, "redirect")) return set_once(record.redirect, value, term);
  if (equals_ignoring_case(name, "exp")) return set_once(record.explanation, value, term);
  if (!MacroString::parse(value, MacroString::Use::modifier)) refuse("bad modifier", term);
}

// directive / modifier
void add_term(SpfRecord& record, std::string_view term) {
  const std::size_t equals = term.find('=');
  if (equals != term.npos && is_modifier_name(term.substr(0, equals))) {
    add_modifier(record, term.substr(0, equals), term.substr(equals + 1), term);
  } else {
    record.directives.push_back(DirectiveParser(term).directive);
  }
}

}  // namespace

bool SpfRecord::has_all() const {
  return std::ranges::find(directives, Mechanism::all, &SpfDirective::mechanism) != directives.end();
}

bool is_spf_record(std::string_view text) {
  return equals_ignoring_case(text.substr(0, version.size()), version) &&
         (text.size() == version.size() || text[version.size()] == ' ');
}

// record = version terms *SP
// terms = *( 1*SP ( directive / modifier ) )
SpfRecord parse_spf_record(std::string_view text) {
  if (!is_spf_record(text)) refuse("no SPF record:", text);
  SpfRecord record;
  text.remove_prefix(version.size());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    if (end > 0) add_term(record, text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return record;
}

}  // namespace zrl::dns
