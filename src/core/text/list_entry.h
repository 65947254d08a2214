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

// "REGEX[...]" or "regex[...]", the whole entry; other mixtures of case do not count.
bool is_regex_entry(std::string_view entry);

// The regular expression between the brackets of such an entry, which is_regex_entry() must have accepted. A
// view into `entry`.
std::string_view regex_of(std::string_view entry);

}  // namespace zrl
