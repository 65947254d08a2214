// DNS answers: whatever is in one, reading it ends within its bytes; exchangers come by preference, and
// no more of them than were announced; names are of bounded length and valid UTF-8; addresses are such.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/text/dns_answer.h"
#include "core/text/utf8.h"
#include "net/dns_message.h"
#include "net/ip_utilities.h"

namespace {

constexpr std::size_t longest_name = 255;
constexpr std::size_t header_size = 12;

void require(bool sound) {
  if (!sound) std::abort();
}

// A name that can be asked for reads the same in the query.
void check_query_for(const std::string& name) {
  const std::vector<std::uint8_t> query = zrl::make_dns_query(name, zrl::DnsType::a);
  if (query.empty()) return;
  std::size_t offset = header_size;
  require(zrl::read_dns_name(query, offset) == (name.ends_with('.') ? name : name + "."));
  require(offset + 5 == query.size());
}

// Reading a name agrees with skipping it, and a message answers no query but its own. The first question of
// the message makes that query, if it can be read.
void check_as_answer(zrl::DnsBytes message) {
  zrl::DnsFields fields(message, header_size);
  zrl::DnsFields skipped = fields;
  const std::string name = fields.name();
  skipped.skip_name();
  require(name.size() < longest_name);
  require(fields.failed() || fields.offset() == skipped.offset());
  std::vector<std::uint8_t> query(header_size);
  if (message.size() >= 2) std::copy_n(message.begin(), 2, query.begin());
  query[5] = 1;
  query.insert(query.end(), name.begin(), name.end());
  for (const unsigned byte : {0U, fields.number8(), fields.number8(), fields.number8(), fields.number8()}) {
    query.push_back(static_cast<std::uint8_t>(byte));
  }
  const bool answers = zrl::is_dns_answer(message, query);
  require(!answers || (message[2] & 0xF8U) == 0x80U);
  query[query.size() - 3] ^= 1;
  require(!zrl::is_dns_answer(message, query));
}

void check_exchangers(zrl::DnsBytes message) {
  const zrl::MailExchangers found = zrl::read_mail_exchangers(message);
  require(found.list.size() <= zrl::dns_answer_count(message));
  require(found.best == (found.list.empty() ? "" : found.list.front().exchange));
  unsigned preference = 0;
  for (const zrl::MailExchanger& one : found.list) {
    require(one.preference >= preference);
    preference = one.preference;
    require(!one.exchange.empty() && one.exchange.size() <= 3 * longest_name);
    require(zrl::is_valid_utf8(one.exchange));
    check_query_for(one.exchange);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zrl::DnsBytes message(data, size);
  check_as_answer(message);
  check_exchangers(message);
  const std::vector<std::string> addresses = zrl::read_addresses(message);
  require(addresses.size() <= zrl::dns_answer_count(message));
  for (const std::string& address : addresses) require(zrl::is_dotted_address(address));
  for (std::size_t begin = 0; begin < size; ++begin) {
    std::size_t offset = begin;
    const std::optional<std::string> name = zrl::read_dns_name(message, offset);
    require(!name || (name->size() <= longest_name && offset <= size));
  }
  return 0;
}
