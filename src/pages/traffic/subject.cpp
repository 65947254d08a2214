#include "pages/traffic/subject.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "core/text/domain_names.h"
#include "core/text/letter_case.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr int address_bits = 32;

struct Network {
  std::uint32_t address = 0;
  int prefix_length = address_bits;

  bool holds(const Network& other) const {
    if (other.prefix_length < prefix_length) return false;
    const int rest = address_bits - prefix_length;
    return rest == address_bits || (address ^ other.address) >> rest == 0;
  }
};

// `text` is an IP number.
std::uint32_t address_of(std::string_view text) {
  std::uint32_t address = 0;
  const char* next = text.data();
  for (int part = 0; part < 4; ++part) {
    unsigned number = 0;
    next = std::from_chars(next, text.data() + text.size(), number).ptr + 1;
    address = address << 8 | number;
  }
  return address;
}

std::string text_of(std::uint32_t address) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text += std::to_string(address >> shift & 255);
    if (shift > 0) text += '.';
  }
  return text;
}

std::optional<Network> network_of(std::string_view text) {
  if (is_ip_address(text)) return Network{address_of(text)};
  const std::string entry = network_entry(text);
  if (entry.empty()) return {};
  const std::size_t slash = entry.find('/');
  const auto prefix_length = to_number(std::string_view(entry).substr(slash + 1));
  return Network{address_of(std::string_view(entry).substr(0, slash)), static_cast<int>(*prefix_length)};
}

// "mail.example.com" of "http://mail.example.com:80/path".
std::string_view host_of_link(std::string_view text) {
  const std::size_t scheme = text.find("://");
  if (scheme == text.npos) return text;
  const std::string name = lower(text.substr(0, scheme));
  if (name != "http" && name != "https") return text;
  const std::string_view rest = text.substr(scheme + 3);
  const std::string_view authority = rest.substr(0, rest.find_first_of("/?#"));
  const std::string_view host = authority.substr(authority.rfind('@') + 1);
  const std::string_view name_only = host.substr(0, host.find(':'));
  return name_only.empty() ? text : name_only;
}

// Names in other scripts than Latin count too, as lists may hold them as people write them.
bool looks_like_domain(std::string_view text) {
  if (text.size() > longest_domain_name || text.find('.') == text.npos) return false;
  if (text.find("..") != text.npos || text.front() == '.') return false;
  return std::ranges::all_of(text, [](unsigned char c) {
    return c > 127 || c == '.' || c == '-' || c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
           (c >= 'A' && c <= 'Z');
  });
}

class Candidates {
 public:
  void add(std::string entry, Match match) {
    const bool known = std::ranges::any_of(list, [&](const Candidate& one) { return one.entry == entry; });
    if (!known) list.push_back({std::move(entry), match});
  }

  // The forms in which lists of domains hold what lies at or below a domain.
  void add_forms(std::string_view domain, Match match) {
    for (const std::string_view before : {"@*", "*@", "@"}) add(std::string(before).append(domain), match);
  }

  std::vector<Candidate> list;
};

void add_parents(Candidates& found, std::string_view domain) {
  for (std::size_t dot = domain.find('.'); dot != domain.npos; dot = domain.find('.')) {
    domain.remove_prefix(dot + 1);
    if (domain.empty()) return;
    found.add(std::string(domain), Match::parent_domain);
    found.add_forms(domain, Match::parent_domain);
    for (const std::string_view before : {"*.", "."}) {
      found.add(std::string(before).append(domain), Match::parent_domain);
    }
  }
}

// The networks that hold the subject, as they are written without bits beyond the prefix; the narrowest
// first.
void add_networks(Candidates& found, const Network& subject) {
  for (int length = subject.prefix_length; length > 0; --length) {
    const std::uint32_t mask = ~std::uint32_t{0} << (address_bits - length);
    found.add(text_of(subject.address & mask) + "/" + std::to_string(length), Match::network);
  }
}

}  // namespace

Subject subject_of(std::string_view typed) {
  Subject subject;
  subject.text = cut_between_characters(host_of_link(trim(typed)), Subject::longest);
  if (subject.text.empty()) return subject;
  if (is_ip_address(subject.text)) {
    subject.kind = Subject::Kind::address;
  } else if (const std::string network = network_entry(subject.text); !network.empty()) {
    subject.kind = Subject::Kind::network;
    subject.text = network;
  } else if (const std::size_t at = subject.text.rfind('@'); at != std::string::npos) {
    subject.kind = Subject::Kind::mail;
    subject.domain = lower_unicode(subject.text.substr(at + 1));
    if (!looks_like_domain(subject.domain)) subject.domain.clear();
  } else {
    std::string_view name = subject.text;
    if (name.ends_with('.')) name.remove_suffix(1);
    const bool is_domain = !name.empty() && looks_like_domain(name);
    subject.kind = is_domain ? Subject::Kind::domain : Subject::Kind::text;
    if (is_domain) {
      subject.text = name;
      subject.domain = lower_unicode(name);
    }
  }
  return subject;
}

std::vector<Candidate> candidates(const Subject& subject, const KnownList& list) {
  Candidates found;
  const Matches& matches = list.matches;
  if (subject.kind == Subject::Kind::nothing || matches.has(Match::word)) return {};
  found.add(subject.text, Match::same);
  const bool holds_domains = matches.has(Match::parent_domain);
  if (!subject.domain.empty() && matches.has(Match::any_address)) {
    if (holds_domains) found.add(subject.domain, Match::same);
    found.add_forms(subject.domain, Match::any_address);
  }
  if (!subject.domain.empty() && holds_domains) add_parents(found, subject.domain);
  if (matches.has(Match::network)) {
    if (const auto network = network_of(subject.text)) add_networks(found, *network);
  }
  if (matches.has(Match::extension)) {
    const std::size_t dot = subject.text.rfind('.');
    if (dot != std::string::npos && subject.text.find('@') == std::string::npos)
      found.add(subject.text.substr(dot + 1), Match::extension);
  }
  return found.list;
}

bool holds(std::string_view network, const Subject& subject) {
  const auto outer = network_of(network);
  const auto inner = network_of(subject.text);
  return outer && inner && network.find('/') != network.npos && outer->holds(*inner);
}

std::string_view usual_list(Subject::Kind kind) {
  switch (kind) {
    case Subject::Kind::address:
      return list::black_addresses.name;
    case Subject::Kind::network:
      return list::black_subnets.name;
    case Subject::Kind::mail:
      return list::black_mails.name;
    case Subject::Kind::text:
      return list::subject_keywords.name;
    case Subject::Kind::nothing:
    case Subject::Kind::domain:
      break;
  }
  return list::black_domains.name;
}

}  // namespace zrl
