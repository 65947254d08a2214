#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/dns_fields.h"

// DNS messages (RFC 1035, section 4) as this console writes and reads them. Answers come from the network and
// are not trusted: every function stays within the bytes that it is given, terminates, raises nothing, and
// returns what it could read before the first field that is out of bounds.
namespace zrl {

enum class DnsType : std::uint16_t { a = 1, mx = 15 };

// All queries have the same identifier, so it does not protect against forged answers: only the sender's
// address, the port of the connected socket and the question do.
inline constexpr std::uint16_t dns_query_id = 4575;
// In bytes, of a datagram; a longer one is cut, and its last records are lost.
inline constexpr std::size_t dns_answer_limit = 2048;

// A query for the records of one type, recursion desired. A dot at the end of the name is dropped.
// Empty if there can be no such name: it has an empty label, one of more than 63 bytes, or more than
// 253 bytes with its dots (255 in the message).
std::vector<std::uint8_t> make_dns_query(std::string_view name, DnsType type);

// The fields TC, RCODE and ANCOUNT of the header; 0 if they are missing.
bool is_dns_truncated(DnsBytes message);
unsigned dns_response_code(DnsBytes message);
unsigned dns_answer_count(DnsBytes message);

// Reads the name at `offset`, each label followed by a dot, and moves `offset` to the zero byte that
// ends it or behind the pointer that does. Only part of the format is supported: a byte of 192 is a
// pointer to an offset below 256, any other byte but zero is the length of a label. Nothing if the name
// leaves the message, is longer than 255 bytes, or follows pointers in a loop; `offset` then has no meaning.
// The bytes of the labels are not checked.
std::optional<std::string> read_dns_name(DnsBytes message, std::size_t& offset);

struct MailExchanger {
  std::string exchange;  // with the dot at its end; valid UTF-8
  std::uint16_t preference;
};

struct MailExchangers {
  std::vector<MailExchanger> list;  // by preference; equal ones in the order of the answer
  std::string best;                 // the first one of the lowest preference, or empty
};

// The MX records of an answer. Only the usual compression is supported: the first record of another type
// ends the list, and so does an owner name or the end of an exchange that is not a pointer.
MailExchangers read_mail_exchangers(DnsBytes message);

// The addresses of the A records, dotted, in the order of the answer; other records are skipped. Owner names
// are not compared with the question, see is_dns_answer() in core/text/dns_answer.h.
std::vector<std::string> read_addresses(DnsBytes message);

}  // namespace zrl
