#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zrl {

struct Mailbox {
  static constexpr std::size_t longest_name = 256;

  std::string name;  // UTF-8 without control characters, of that length at most; may be empty
  std::string address;
};

struct MailboxList {
  std::vector<Mailbox> mailboxes;
  // The first entry that is no mailbox, as it stands in the text.
  std::optional<std::string> wrong;
};

// Reads mailboxes with commas or semicolons between them, each being ann@example.com or
// Ann <ann@example.com>, where the name may stand in quotes (RFC 5322, without comments, groups and
// routes). Blank entries are skipped.
MailboxList parse_mailboxes(std::string_view text);

// The entries of such a text, whatever they are, trimmed and not blank: a separator in quotes, angle
// brackets or a comment is part of its entry.
std::vector<std::string_view> split_mailboxes(std::string_view text);

// The name without its quotes and escapes.
std::string unquoted_name(std::string_view text);

// The mailbox as parse_mailboxes() reads it, the name in quotes if it needs them.
std::string to_text(const Mailbox& mailbox);

// A local part and a domain (RFC 5321, section 4.1.2) in ASCII, 254 bytes at most; without quoted
// local parts. The domain may be an address in brackets.
bool is_mail_address(std::string_view text);

// The name of a host, an IPv4 address, or an IPv6 address with or without brackets.
bool is_mail_host(std::string_view text);

}  // namespace zrl
