#include "core/input_hint.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/console.h"
#include "core/contracts/regexp.h"
#include "core/text/ascii.h"
#include "core/text/domain_names.h"
#include "core/text/error.h"
#include "core/text/list_entry.h"
#include "core/text/mail_address.h"
#include "core/text/text.h"

namespace zrl {

namespace {

using Kind = Expectation::Kind;

// A text of the catalogue; the values go into its places.
struct Fault {
  std::string_view text;
  bool unfinished = false;
  std::string value = {};
  std::string second = {};
};

using Found = std::optional<Fault>;

bool has(std::string_view text, char c) {
  return text.find(c) != text.npos;
}

bool has_blank(std::string_view text) {
  return text.find_first_of(" \t\r\n") != text.npos;
}

bool is_web_address(std::string_view text) {
  return text.find("://") != text.npos || text.starts_with("//");
}

bool is_made_of(std::string_view text, std::string_view characters) {
  return text.find_first_not_of(characters) == text.npos;
}

constexpr std::string_view digits_and_dots = "0123456789.";

Found fault_of_ip_number(std::string_view text) {
  if (is_ip_address(text)) return {};
  if (is_web_address(text)) return Fault{"This is a web address, not an IP number"};
  if (has_blank(text)) return Fault{"There is a blank in the IP number"};
  if (has(text, '/')) return Fault{"This is a network; those have lists of their own"};
  if (has(text, ':')) return Fault{"Only IPv4 numbers, such as 192.0.2.1"};
  if (!is_made_of(text, digits_and_dots)) return Fault{"An IP number has four numbers, such as 192.0.2.1"};
  const auto dots = std::ranges::count(text, '.');
  if (dots < 3 || text.ends_with('.')) return Fault{"An IP number has four numbers, such as 192.0.2.1", true};
  return Fault{"Four numbers from 0 to 255 make an IP number"};
}

Found fault_of_name(std::string_view name) {
  if (is_web_address(name)) return Fault{"This is a web address; only its domain belongs here"};
  if (has_blank(name)) return Fault{"There is a blank in the domain"};
  if (has(name, '/')) return Fault{"There is a slash in the domain"};
  if (std::ranges::any_of(name, [](char c) { return static_cast<unsigned char>(c) > 0x7E; })) {
    return Fault{"A domain with other letters is written in its form xn--..."};
  }
  if (!is_domain_name(name)) return Fault{"This is no domain", name.ends_with('.') || name.ends_with('-')};
  if (!has(name, '.')) return Fault{"A domain has a dot, such as example.com", true};
  return {};
}

Found fault_of_domain(std::string_view text) {
  for (const std::string_view form : {std::string_view("@*"), std::string_view("*@")}) {
    if (text.starts_with(form)) text.remove_prefix(form.size());
  }
  if (is_ip_address(text)) return Fault{"This is an IP number, not a domain"};
  if (has(text, '@')) return Fault{"This is a mail address, not a domain"};
  return fault_of_name(text);
}

Found fault_of_mail(std::string_view text) {
  if (has_blank(text)) return Fault{"There is a blank in the address"};
  const std::size_t at = text.rfind('@');
  if (at == text.npos) return Fault{"An address needs an at sign", true};
  if (text.find('@') != at) return Fault{"There is more than one at sign"};
  const std::string_view domain = text.substr(at + 1);
  if (domain.empty()) return Fault{"Behind the at sign stands a domain", true};
  if (is_ip_address(domain)) return {};
  return fault_of_name(domain);
}

Found fault_of_network(std::string_view text) {
  const std::size_t slash = text.find('/');
  const std::string_view address = text.substr(0, slash);
  if (slash == text.npos) {
    if (is_ip_address(text)) return Fault{"A network has a slash and a length, such as 192.0.2.0/24", true};
    return fault_of_ip_number(text);
  }
  if (const Found fault = fault_of_ip_number(address)) return Fault{fault->text};
  const std::string_view length = text.substr(slash + 1);
  if (length.empty()) return Fault{"A network has a slash and a length, such as 192.0.2.0/24", true};
  const auto number = to_number(length);
  constexpr int longest = 32;
  if (!number || *number < 1 || *number > longest)
    return Fault{"The length behind the slash is from 1 to 32"};
  return {};
}

Found fault_of_host(std::string_view text) {
  if (is_mail_host(text)) return {};
  if (is_web_address(text)) return Fault{"This is a web address; only the name of the host belongs here"};
  if (has_blank(text)) return Fault{"There is a blank in the name"};
  return Fault{"This is neither the name of a host nor an IP number", text.ends_with('.')};
}

Found fault_of_number(const Expectation& expected, std::string_view text) {
  const auto number = to_number(text);
  if (number && *number >= expected.least && *number <= expected.most) return {};
  return Fault{"A whole number from %1 to %2", false, std::to_string(expected.least),
               std::to_string(expected.most)};
}

Found fault_of_pattern(Console& console, std::string_view pattern) {
  try {
    console.components().create<RegExp>()->set_pattern(pattern, {.ignore_case = true});
  } catch (const std::exception& failure) {
    return Fault{"The regular expression is broken: %1", false,
                 console.localisation().translate(failure.what())};
  }
  return {};
}

Found fault_of_keyword(Console& console, std::string_view text) {
  constexpr std::string_view opening = "regex[";
  if (!equals_ignoring_case(text.substr(0, opening.size()), opening)) return {};
  if (!text.ends_with(']')) return Fault{"A regular expression ends with a bracket: REGEX[...]", true};
  if (!is_regex_entry(text)) return Fault{"Written so, this is a plain word; write REGEX[...]"};
  return fault_of_pattern(console, regex_of(text));
}

Found fault_of_expression(Console& console, std::string_view text) {
  constexpr std::string_view opening = "regex[";
  if (equals_ignoring_case(text.substr(0, opening.size()), opening)) return fault_of_keyword(console, text);
  return fault_of_pattern(console, text);
}

// Each line has the code, and between the code and the text a hyphen, or in the last line a blank.
Found fault_of_reply(std::string_view text) {
  constexpr std::size_t code_length = 3;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    const std::string_view code = line.substr(0, code_length);
    if (code.size() < code_length || !std::ranges::all_of(code, is_digit) || code[0] < '2' || code[0] > '5') {
      return Fault{"Each line begins with the code of the reply, such as 250"};
    }
    const char behind = line.size() == code_length ? ' ' : line[code_length];
    if (behind != ' ' && behind != '-') return Fault{"Behind the code stands a blank"};
    if (text.empty() && behind == '-') return Fault{"In the last line, a blank stands behind the code"};
    if (!text.empty() && behind != '-')
      return Fault{"In all lines but the last, a hyphen stands behind the code"};
  }
  return {};
}

Found fault_of(Console& console, const Expectation& expected, std::string_view text) {
  switch (expected.kind) {
    case Kind::anything:
      break;
    case Kind::domain:
      return fault_of_domain(text);
    case Kind::ip_number:
      return fault_of_ip_number(text);
    case Kind::domain_or_ip_number: {
      if (is_ip_address(text)) return {};
      const bool is_number = is_made_of(text, digits_and_dots);
      return is_number ? fault_of_ip_number(text) : fault_of_domain(text);
    }
    case Kind::network:
      return fault_of_network(text);
    case Kind::mail_address:
      return fault_of_mail(text);
    case Kind::domain_or_mail:
      return has(text, '@') ? fault_of_mail(text) : fault_of_domain(text);
    case Kind::host:
      return fault_of_host(text);
    case Kind::number:
      return fault_of_number(expected, text);
    case Kind::keyword:
      return fault_of_keyword(console, text);
    case Kind::expression:
      return fault_of_expression(console, text);
    case Kind::reply:
      return fault_of_reply(text);
    case Kind::file_name:
      if (text.find_first_of("/\\") != text.npos) return Fault{"A file name has no folder"};
      break;
  }
  return {};
}

}  // namespace

InputHint input_hint(Console& console, const Expectation& expected, std::string_view text) {
  // Behind the last line there is nothing to check.
  text = trim(text);
  if (text.empty()) return {};
  const Found fault = fault_of(console, expected, text);
  if (!fault) return {};
  const std::array<std::string_view, 2> values{fault->value, fault->second};
  return {with_values(console.localisation().translate(fault->text), values), fault->unfinished};
}

}  // namespace zrl
