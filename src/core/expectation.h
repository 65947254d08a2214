#pragma once

#include <cstdint>

namespace zrl {

// What a text field is meant to hold, so that hosts can say what does not fit while people type. It is a
// hint: a field takes any text, and what the form does with it does not depend on this.
struct Expectation {
  enum class Kind : std::uint8_t {
    anything,
    domain,     // in ASCII (RFC 5890), also in the lists' form "@*example.com"
    ip_number,  // IPv4, dotted
    domain_or_ip_number,
    network,       // IPv4, with a prefix length from 1 to 32 (RFC 4632)
    mail_address,  // with an at sign and a domain
    domain_or_mail,
    host,        // a name or an IP number
    number,      // whole, from `least` to `most`
    keyword,     // a word, or an expression as REGEX[...]
    expression,  // the same, with or without REGEX[]
    reply,       // lines of an SMTP reply (RFC 5321, section 4.2), each with its code
    file_name,   // without a folder
  };

  Kind kind = Kind::anything;
  std::int64_t least = 0;
  std::int64_t most = 0;
};

namespace expects {

inline constexpr Expectation domain{Expectation::Kind::domain};
inline constexpr Expectation ip_number{Expectation::Kind::ip_number};
inline constexpr Expectation domain_or_ip_number{Expectation::Kind::domain_or_ip_number};
inline constexpr Expectation network{Expectation::Kind::network};
inline constexpr Expectation mail_address{Expectation::Kind::mail_address};
inline constexpr Expectation domain_or_mail{Expectation::Kind::domain_or_mail};
inline constexpr Expectation host{Expectation::Kind::host};
inline constexpr Expectation port{Expectation::Kind::number, 1, 65'535};
inline constexpr Expectation keyword{Expectation::Kind::keyword};
inline constexpr Expectation expression{Expectation::Kind::expression};
inline constexpr Expectation reply{Expectation::Kind::reply};
inline constexpr Expectation file_name{Expectation::Kind::file_name};

}  // namespace expects

}  // namespace zrl
