#pragma once

#include <string>
#include <string_view>

// The forms of list entries: addresses, regular expressions, and texts with their quotes escaped.
namespace zrl {

// Every double quote becomes the four characters \x22 and every apostrophe \x27, so that the text
// can stand in a statement. Entries are stored in this form.
std::string escape_quotes(std::string_view text);

// An IPv4 address in dotted form and nothing else: four decimal numbers of one to three digits, each
// from 0 to 255.
bool is_ip_address(std::string_view text);

// What entry fields show instead of an address that is none.
inline constexpr std::string_view not_an_ip_number = "Not a valid IP. Please enter only IP Numbers";

// A network in prefix notation (RFC 4632), "192.0.2.0/24", as the lists store it: trimmed, and its prefix
// length, from 1 to 32, in digits alone. Empty if the text is none. A blank before the slash is a fault, one
// behind it is none. Bits of the address beyond the prefix stay as they are.
std::string network_entry(std::string_view text);
inline constexpr std::string_view not_a_network =
    "Not a network: enter an IP number, a slash, and a prefix length from 1 to 32";

// "REGEX[...]" or "regex[...]", the whole entry; other mixtures of case do not count.
bool is_regex_entry(std::string_view entry);

// What an entry of a list of keywords, which is no regular expression, is looked for as: in lower case, and
// with its quotes, which lists store escaped. Texts are searched in lower case.
std::string keyword_text(std::string_view entry);

// The regular expression between the brackets of such an entry, which is_regex_entry() must have accepted. A
// view into `entry`.
std::string_view regex_of(std::string_view entry);

}  // namespace zrl
