#include "net/dns_message.h"

#include <algorithm>

#include "core/text/domain_names.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::size_t header_size = 12;
constexpr std::size_t longest_name = 255;
constexpr std::uint8_t pointer_mark = 192;
constexpr std::uint16_t class_internet = 1;
// A name has at most 127 labels, and each could lie behind a pointer of its own.
constexpr int most_pointers = 128;

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

// Fixed fields read one behind the other; reading beyond the end yields zeros and fails for good.
class Fields {
 public:
  Fields(DnsBytes message, std::size_t offset) : message_(message), offset_(offset) {}

  bool failed() const { return failed_; }
  std::size_t offset() const { return offset_; }
  std::size_t left() const { return message_.size() - offset_; }

  DnsBytes bytes(std::size_t count) {
    if (failed_ || offset_ > message_.size() || count > left()) {
      failed_ = true;
      return {};
    }
    const DnsBytes result = message_.subspan(offset_, count);
    offset_ += count;
    return result;
  }
  void skip(std::size_t count) { bytes(count); }
  unsigned number8() {
    const DnsBytes field = bytes(1);
    return field.empty() ? 0 : field[0];
  }
  unsigned number16() {
    const DnsBytes field = bytes(2);
    return field.empty() ? 0 : field[0] * 256U + field[1];
  }

  // A name as the standard has it; pointers are not followed.
  void skip_name() {
    for (unsigned length = number8(); length != 0; length = number8()) {
      if (length >= pointer_mark) return skip(1);
      if (length > longest_label) failed_ = true;
      skip(length);
    }
  }

 private:
  DnsBytes message_;
  std::size_t offset_;
  bool failed_ = false;
};

unsigned header16(DnsBytes message, std::size_t offset) {
  return Fields(message, offset).number16();
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
  query.resize(header_size);
  if (!append_name(query, name)) return {};
  append16(query, static_cast<unsigned>(type));
  append16(query, class_internet);
  return query;
}

bool has_dns_query_id(DnsBytes message) {
  return message.size() >= header_size && header16(message, 0) == dns_query_id;
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
      if (at + 1 >= message.size() || ++pointers > most_pointers) return std::nullopt;
      if (!behind_pointer) offset = at + 2;
      behind_pointer = true;
      at = message[at + 1];
      continue;
    }
    if (length >= message.size() - at || name.size() + length + 1 > longest_name) return std::nullopt;
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
  std::size_t offset = header_size;
  if (!read_dns_name(message, offset)) return found;
  offset += 8;  // from the end of the question to the low byte of the first answer's type
  for (unsigned left = dns_answer_count(message); left > 0; --left) {
    Fields fields(message, offset);
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
  Fields fields(message, header_size);
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
