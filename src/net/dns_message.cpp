#include "net/dns_message.h"

#include <algorithm>

#include "core/text/dns_fields.h"
#include "core/text/domain_names.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::uint8_t pointer_mark = 192;
constexpr std::uint16_t class_internet = 1;
constexpr unsigned truncation_bit = 0x0200;

void append16(std::vector<std::uint8_t>& out, unsigned value) {
  out.push_back(static_cast<std::uint8_t>(value >> 8));
  out.push_back(static_cast<std::uint8_t>(value & 0xFF));
}

bool append_name(std::vector<std::uint8_t>& out, std::string_view name) {
  if (name.ends_with('.')) name.remove_suffix(1);
  if (!has_dns_lengths(name)) return false;
  for (std::size_t begin = 0; begin <= name.size();) {
    const std::string_view label = name.substr(begin, name.find('.', begin) - begin);
    out.push_back(static_cast<std::uint8_t>(label.size()));
    out.insert(out.end(), label.begin(), label.end());
    begin += label.size() + 1;
  }
  out.push_back(0);
  return true;
}

unsigned header16(DnsBytes message, std::size_t offset) {
  return DnsFields(message, offset).number16();
}

std::string dotted(DnsBytes bytes) {
  std::string result;
  for (const std::uint8_t byte : bytes) result.append(std::to_string(byte)).append(".");
  result.pop_back();
  return result;
}

}  // namespace

std::vector<std::uint8_t> make_dns_query(std::string_view name, DnsType type) {
  std::vector<std::uint8_t> query;
  append16(query, dns_query_id);
  append16(query, 0x0100);  // recursion desired
  append16(query, 1);       // one question, nothing else
  query.resize(dns_header_size);
  if (!append_name(query, name)) return {};
  append16(query, static_cast<unsigned>(type));
  append16(query, class_internet);
  return query;
}

bool is_dns_truncated(DnsBytes message) {
  return (header16(message, 2) & truncation_bit) != 0;
}

unsigned dns_response_code(DnsBytes message) {
  return header16(message, 2) & 0x0F;
}

unsigned dns_answer_count(DnsBytes message) {
  return header16(message, 6);
}

std::optional<std::string> read_dns_name(DnsBytes message, std::size_t& offset) {
  std::string name;
  std::size_t at = offset;
  bool behind_pointer = false;
  int pointers = 0;
  while (at < message.size() && message[at] != 0) {
    const std::size_t length = message[at];
    if (length == pointer_mark) {
      if (at + 1 >= message.size() || ++pointers > most_dns_pointers) return std::nullopt;
      if (!behind_pointer) offset = at + 2;
      behind_pointer = true;
      at = message[at + 1];
      continue;
    }
    if (length >= message.size() - at || name.size() + length + 1 > longest_dns_name) return std::nullopt;
    const DnsBytes label = message.subspan(at + 1, length);
    name.append(label.begin(), label.end()).push_back('.');
    at += length + 1;
  }
  if (at >= message.size()) return std::nullopt;
  if (!behind_pointer) offset = at;
  return name;
}

// The steps between the fields count on every owner name being a pointer, and on every exchange
// ending in one. Servers compress so; anything else ends the list.
MailExchangers read_mail_exchangers(DnsBytes message) {
  MailExchangers found;
  std::size_t offset = dns_header_size;
  if (!read_dns_name(message, offset)) return found;
  offset += 8;  // from the end of the question to the low byte of the first answer's type
  for (unsigned left = dns_answer_count(message); left > 0; --left) {
    DnsFields fields(message, offset);
    if (fields.number8() != static_cast<unsigned>(DnsType::mx)) break;
    fields.skip(8);  // the class, the time to live, the length
    const auto preference = static_cast<std::uint16_t>(fields.number16());
    if (fields.failed()) break;
    offset = fields.offset();
    const std::optional<std::string> name = read_dns_name(message, offset);
    if (!name) break;
    const std::string exchange = valid_utf8(trim(*name));
    if (!exchange.empty()) found.list.push_back({exchange, preference});
    offset += 3;
  }
  std::stable_sort(found.list.begin(), found.list.end(), [](const MailExchanger& a, const MailExchanger& b) {
    return a.preference < b.preference;
  });
  if (!found.list.empty()) found.best = found.list.front().exchange;
  return found;
}

std::vector<std::string> read_addresses(DnsBytes message) {
  std::vector<std::string> found;
  DnsFields fields(message, dns_header_size);
  for (unsigned left = header16(message, 4); left > 0 && !fields.failed(); --left) {
    fields.skip_name();
    fields.skip(4);  // type and class
  }
  for (unsigned left = dns_answer_count(message); left > 0; --left) {
    fields.skip_name();
    const unsigned type = fields.number16();
    const unsigned record_class = fields.number16();
    fields.skip(4);  // time to live
    const DnsBytes data = fields.bytes(fields.number16());
    if (fields.failed()) break;
    if (type == static_cast<unsigned>(DnsType::a) && record_class == class_internet && data.size() == 4) {
      found.push_back(dotted(data));
    }
  }
  return found;
}

}  // namespace zrl
