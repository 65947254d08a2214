#include "scripting/console_lookups.h"

#include <arpa/inet.h>

#include "core/contracts/name_lookup.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr int invalid_call = 5;
constexpr int cannot_perform = 17;

struct List {
  std::string_view name;
  Literal select;
};

// The lists that pages edit; passwords and logs are none.
constexpr List lists[] = {
    {"Blackhost", "SELECT IPNumber FROM Blackhost WHERE IPNumber='"},
    {"Whitehost", "SELECT IPNumber FROM Whitehost WHERE IPNumber='"},
    {"myips", "SELECT IPNumber FROM myips WHERE IPNumber='"},
    {"blacksub", "SELECT subnet FROM blacksub WHERE subnet='"},
    {"whitesub", "SELECT subnet FROM whitesub WHERE subnet='"},
    {"blackmail", "SELECT entry FROM blackmail WHERE entry='"},
    {"whitemail", "SELECT entry FROM whitemail WHERE entry='"},
    {"localmail", "SELECT entry FROM localmail WHERE entry='"},
    {"exceptmail", "SELECT entry FROM exceptmail WHERE entry='"},
    {"swords", "SELECT entry FROM swords WHERE entry='"},
    {"words", "SELECT entry FROM words WHERE entry='"},
    {"subjectwhite", "SELECT entry FROM subjectwhite WHERE entry='"},
    {"files", "SELECT files FROM files WHERE files='"},
    {"extension", "SELECT extension FROM extension WHERE extension='"},
};

// An address as DNS-based lists are asked for it (RFC 5782): its parts backwards. Empty for what is none.
std::string backwards(const std::string& address) {
  unsigned char bytes[16];
  std::string name;
  if (inet_pton(AF_INET, address.c_str(), bytes) == 1) {
    for (int i = 3; i >= 0; --i) name += std::to_string(bytes[i]) + ".";
  } else if (inet_pton(AF_INET6, address.c_str(), bytes) == 1) {
    constexpr char digits[] = "0123456789abcdef";
    for (int i = 15; i >= 0; --i) {
      for (const int digit : {bytes[i] & 15, bytes[i] >> 4}) (name += digits[digit]) += '.';
    }
  }
  return name;
}

}  // namespace

void ConsoleLookups::ask(const std::string& what, const std::function<void()>& action) {
  console_.attempt(Kind::component, what, Step::read, action);
}

std::string ConsoleLookups::address(const std::string& host) {
  std::string found;
  if (!trim(host).empty()) ask("look up " + host, [&] { found = console_.names().host_address(host); });
  return found;
}

std::string ConsoleLookups::name(const std::string& address) {
  std::string found;
  if (!dns_) dns_ = component<DnsClient>();
  if (dns_) ask("look up " + address, [&] { found = dns_->PTR_Query(address); });
  return found;
}

std::vector<std::string> ConsoleLookups::exchangers(const std::string& domain) {
  std::vector<std::string> found;
  ask("look up the exchangers of " + domain, [&] {
    const StringList list = console_.names().mail_exchangers(domain);
    for (std::size_t i = 0; i < list.size(); ++i) found.emplace_back(list[i]);
  });
  for (std::string& exchanger : found) {
    if (exchanger.ends_with('.')) exchanger.pop_back();
  }
  return found;
}

std::string ConsoleLookups::listed(const std::string& zone, const std::string& address) {
  const std::string reversed = backwards(address);
  if (reversed.empty() || trim(zone).empty()) throw vbs::ServiceError{invalid_call, {}};
  std::string answer = this->address(reversed + zone);
  // Anything else is no answer of a list, but of somebody who answers for every name.
  if (!answer.starts_with("127.")) answer.clear();
  return answer;
}

bool ConsoleLookups::has_entry(const std::string& list, const std::string& entry) {
  if (!connected_) connected_ = connect_database();
  if (!connected_) throw vbs::ServiceError{cannot_perform, "No connection to the database"};
  for (const List& known : lists) {
    if (!equals_ignoring_case(known.name, list)) continue;
    const std::string stored = escape_quotes(entry);
    Statement select(known.select);
    select.append(value(stored)).append("'");
    return count_value(select).value_or(0) > 0;
  }
  throw vbs::ServiceError{invalid_call, "There is no list of this name"};
}

}  // namespace zrl
