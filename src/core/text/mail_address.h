#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zrl {

// A display name with an address (RFC 5322, section 3.4).
struct Mailbox {
  static constexpr std::size_t longest_name = 256;  // bytes

  std::string name;  // UTF-8 without control characters, of that length at most; may be empty
  std::string address;
};

struct MailboxList {
  // Those up to the first entry that is wrong.
  std::vector<Mailbox> mailboxes;
  // The first entry that is not a mailbox, unchanged, for an error message.
  std::optional<std::string> wrong;
};

// Reads mailboxes with commas or semicolons between them, each being ann@example.com or
// Ann <ann@example.com>, where the name may stand in quotes (RFC 5322, without comments, groups and
// routes). Blank entries are skipped; an entry with control characters or ill-formed UTF-8 is wrong. The
// number of mailboxes is not limited.
MailboxList parse_mailboxes(std::string_view text);

// The entries of such a text without any check of their form, trimmed and not blank: a separator in quotes,
// angle brackets or a comment is part of its entry. Views into `text`.
std::vector<std::string_view> split_mailboxes(std::string_view text);

// A display name without its quotes and escapes, trimmed.
std::string unquoted_name(std::string_view text);

// The mailbox in the form that parse_mailboxes() reads, the name in quotes if it needs them.
std::string to_text(const Mailbox& mailbox);

// A local part of at most 64 bytes and a domain (RFC 5321, section 4.1.2) in ASCII, 254 bytes at most;
// without quoted local parts. The domain may be an IP address in brackets.
bool is_mail_address(std::string_view text);

// The name of a host, an IPv4 address, or an IPv6 address with or without brackets.
bool is_mail_host(std::string_view text);

}  // namespace zrl
