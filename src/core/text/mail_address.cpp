#include "core/text/mail_address.h"

#include <algorithm>

#include <arpa/inet.h>

#include "core/text/ascii.h"
#include "core/text/domain_names.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::size_t longest_address = 254;
constexpr std::size_t longest_local_part = 64;

bool is_atom_character(char c) {
  return is_letter_or_digit(c) ||
         (c != '\0' && std::string_view("!#$%&'*+-/=?^_`{|}~").find(c) != std::string_view::npos);
}

// Cuts the text at its dots; true if every piece passes.
template <typename Test>
bool all_pieces(std::string_view text, Test passes) {
  for (;;) {
    const std::size_t dot = text.find('.');
    if (!passes(text.substr(0, dot))) return false;
    if (dot == text.npos) return true;
    text.remove_prefix(dot + 1);
  }
}

bool is_local_part(std::string_view text) {
  return text.size() <= longest_local_part && all_pieces(text, [](std::string_view atom) {
           return !atom.empty() && std::ranges::all_of(atom, is_atom_character);
         });
}

bool is_ip(int family, std::string_view text) {
  unsigned char bytes[sizeof(in6_addr)];
  const std::string terminated(text);
  return terminated.find('\0') == terminated.npos && ::inet_pton(family, terminated.c_str(), bytes) == 1;
}

std::optional<std::string_view> inside_brackets(std::string_view text) {
  if (!text.starts_with('[') || !text.ends_with(']')) return std::nullopt;
  return text.substr(1, text.size() - 2);
}

bool is_address_literal(std::string_view text) {
  constexpr std::string_view version_6 = "ipv6:";
  if (!lower(text.substr(0, version_6.size())).starts_with(version_6)) return is_ip(AF_INET, text);
  return is_ip(AF_INET6, text.substr(version_6.size()));
}

// Where the entry at the beginning of the text ends.
std::size_t end_of_entry(std::string_view text) {
  bool quoted = false;
  bool bracketed = false;
  int comments = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if ((quoted || comments > 0) && c == '\\') {
      ++i;
    } else if (comments == 0 && c == '"') {
      quoted = !quoted;
    } else if (quoted) {
      continue;
    } else if (c == '(') {
      ++comments;
    } else if (c == ')') {
      comments -= comments > 0 ? 1 : 0;
    } else if (c == '<' || c == '>') {
      bracketed = c == '<';
    } else if (!bracketed && comments == 0 && (c == ',' || c == ';')) {
      return i;
    }
  }
  return text.size();
}

std::optional<Mailbox> parse_mailbox(std::string_view entry) {
  if (has_controls(entry) || !is_valid_utf8(entry)) return std::nullopt;
  Mailbox mailbox;
  std::string_view address = entry;
  if (entry.ends_with('>')) {
    const std::size_t open = entry.rfind('<');
    if (open == entry.npos) return std::nullopt;
    address = trim(entry.substr(open + 1, entry.size() - open - 2));
    mailbox.name = unquoted_name(entry.substr(0, open));
  }
  if (!is_mail_address(address) || mailbox.name.size() > Mailbox::longest_name) return std::nullopt;
  mailbox.address = address;
  return mailbox;
}

}  // namespace

std::string unquoted_name(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') continue;
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    result += text[i];
  }
  return std::string(trim(result));
}

std::vector<std::string_view> split_mailboxes(std::string_view text) {
  std::vector<std::string_view> entries;
  while (!text.empty()) {
    const std::size_t end = end_of_entry(text);
    const std::string_view entry = trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!entry.empty()) entries.push_back(entry);
  }
  return entries;
}

std::string to_text(const Mailbox& mailbox) {
  if (mailbox.name.empty()) return mailbox.address;
  std::string name;
  for (const char c : mailbox.name) {
    if (c == '"' || c == '\\') name += '\\';
    name += c;
  }
  if (name.find_first_of("()<>[]:;@\\,.\"") != name.npos) name = '"' + name + '"';
  return name + " <" + mailbox.address + ">";
}

MailboxList parse_mailboxes(std::string_view text) {
  MailboxList result;
  for (const std::string_view entry : split_mailboxes(text)) {
    std::optional<Mailbox> mailbox = parse_mailbox(entry);
    if (!mailbox) {
      result.wrong = entry;
      break;
    }
    result.mailboxes.push_back(*std::move(mailbox));
  }
  return result;
}

bool is_mail_address(std::string_view text) {
  const std::size_t at = text.rfind('@');
  if (at == text.npos || text.size() > longest_address || !is_local_part(text.substr(0, at))) return false;
  const std::string_view domain = text.substr(at + 1);
  if (const auto literal = inside_brackets(domain)) return is_address_literal(*literal);
  return is_host_name(domain);
}

bool is_mail_host(std::string_view text) {
  if (const auto literal = inside_brackets(text)) return is_ip(AF_INET6, *literal);
  if (is_ip(AF_INET6, text)) return true;
  if (text.ends_with('.')) text.remove_suffix(1);
  return is_host_name(text);
}

}  // namespace zrl
