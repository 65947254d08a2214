#include "components/block_lists/uri_finder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <unordered_set>

#include "components/block_lists/domain_name.h"
#include "core/text/ascii.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl::block_lists {

namespace {

constexpr int hexadecimal = 16;
constexpr int decimal = 10;
constexpr int octal = 8;

bool is_ascii(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

bool is_host_character(char c) {
  return is_letter_or_digit(c) || c == '-' || c == '_' || c == '.';
}

bool is_slash(char c) {
  return c == '/' || c == '\\';  // browsers accept both
}

// What ends a URI in a text or in an attribute.
bool is_border(char c) {
  constexpr std::string_view borders = "\"'<>()[]{}|`";
  return static_cast<unsigned char>(c) <= ' ' || !is_ascii(c) || borders.find(c) != borders.npos;
}

// The whole of `digits` as a number; none if it is not one or does not fit.
std::optional<std::uint32_t> number_of(std::string_view digits, int base) {
  std::uint32_t number = 0;
  const auto [stop, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  if (digits.empty() || fault != std::errc() || stop != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// An ASCII character that is written as "%2E", "&#46;" or "&#x2e;".
struct Escape {
  char character = 0;
  std::size_t length = 0;  // 0: there is none
};

Escape escape_of(std::optional<std::uint32_t> code, std::size_t length) {
  return code && *code > 0 && *code < 0x80 ? Escape{static_cast<char>(*code), length} : Escape{};
}

Escape reference_at(std::string_view text) {
  constexpr std::size_t longest = 8;  // digits, leading zeros among them
  if (!text.starts_with("&#")) return {};
  const bool is_hexadecimal = text.size() > 2 && (text[2] == 'x' || text[2] == 'X');
  const std::size_t begin = is_hexadecimal ? 3 : 2;
  const std::string_view digits_and_more = text.substr(std::min(begin, text.size()), longest + 1);
  const std::size_t end =
      std::min(digits_and_more.find_first_not_of(is_hexadecimal ? "0123456789abcdefABCDEF" : "0123456789"),
               digits_and_more.size());
  const bool closed = end < digits_and_more.size() && digits_and_more[end] == ';';
  return escape_of(number_of(digits_and_more.substr(0, end), is_hexadecimal ? hexadecimal : decimal),
                   begin + end + (closed ? 1 : 0));
}

Escape escape_at(std::string_view text) {
  constexpr std::size_t length = 3;
  if (text.front() == '&') return reference_at(text);
  return text.size() < length ? Escape{} : escape_of(number_of(text.substr(1, 2), hexadecimal), length);
}

std::string unescaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of("%&"), text.size());
    result.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const Escape escape = escape_at(text);
    result += escape.length == 0 ? text.front() : escape.character;
    text.remove_prefix(std::max<std::size_t>(escape.length, 1));
  }
  return result;
}

std::optional<std::uint32_t> address_part(std::string_view part) {
  if (part.starts_with("0x") || part.starts_with("0X")) return number_of(part.substr(2), hexadecimal);
  return number_of(part, part.starts_with('0') && part.size() > 1 ? octal : decimal);
}

// An IPv4 address of one to four numbers, the last of which fills the remaining bytes, in dotted form; empty
// if the text is no such address.
std::string address_of(std::string_view host) {
  constexpr std::uint32_t greatest_byte = 255;
  std::uint32_t address = 0;
  for (int shift = 24;; shift -= 8) {
    const std::size_t dot = host.find('.');
    const auto part = address_part(host.substr(0, dot));
    if (!part) return {};
    if (dot == host.npos) {
      if (*part > (0xFFFFFFFFU >> static_cast<unsigned>(24 - shift))) return {};
      address |= *part;
      break;
    }
    if (shift == 0 || *part > greatest_byte) return {};
    address |= *part << static_cast<unsigned>(shift);
    host.remove_prefix(dot + 1);
  }
  std::string text;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) text += std::to_string(address >> shift & 0xFFU) + ".";
  text.pop_back();
  return text;
}

// Whether the last label can be that of a top-level domain.
bool has_top_level(std::string_view name) {
  const std::string_view last = name.substr(name.rfind('.') + 1);
  return last.starts_with("xn--") || (last.size() >= 2 && std::ranges::all_of(last, is_letter));
}

// Texts name files as often as hosts, and a file name can look like a host name.
bool is_file_name(std::string_view name) {
  constexpr std::array<std::string_view, 30> endings = {
      "asp",  "aspx", "bmp", "cgi",  "css", "csv", "dll", "doc", "docx", "exe",
      "gif",  "gz",   "htm", "html", "jpg", "js",  "jsp", "log", "pdf",  "php",
      "jpeg", "png",  "ppt", "rar",  "svg", "tar", "txt", "xls", "xml",  "zip"};
  return std::ranges::find(endings, name.substr(name.rfind('.') + 1)) != endings.end();
}

class Names {
 public:
  explicit Names(std::size_t most) : most_(most) {}

  void add(std::string name) {
    if (known_.contains(name)) return;
    if (list_.size() == most_) {
      complete_ = false;
      return;
    }
    known_.insert(name);
    list_.push_back(std::move(name));
  }

  const std::vector<std::string>& list() const { return list_; }
  bool complete() const { return complete_; }
  FoundNames take() { return {std::move(list_), complete_}; }

 private:
  std::size_t most_;
  std::vector<std::string> list_;
  std::unordered_set<std::string> known_;
  bool complete_ = true;
};

class Scanner {
 public:
  Scanner(std::string_view text, std::size_t most) : text_(text), linked_(most), free_(most) {}

  FoundNames run() {
    while (at_ < text_.size()) {
      if (is_host_character(text_[at_])) {
        read_word();
      } else if (is_border(text_[at_++])) {
        in_uri_ = false;
      }
    }
    for (const std::string& name : free_.list()) linked_.add(name);
    FoundNames found = linked_.take();
    found.complete = found.complete && free_.complete();
    return found;
  }

 private:
  // A run of characters that host names are made of: a scheme, a host name, or a word of the text.
  void read_word() {
    const std::size_t begin = at_;
    pass_host_characters();
    const std::string_view word = text_.substr(begin, at_ - begin);
    if (rest().starts_with(':') && is_slash(peek(1)) && is_slash(peek(2))) {
      read_authority();
    } else if (!rest().starts_with('@')) {  // else it is the mailbox of an address
      const bool stands_free = !in_uri_ && !continues_something(begin);
      for_each_name(word, [&](std::string_view name) { read_host(name, stands_free); });
      // What follows is a path, in which file names look like host names.
      if (word.find('.') != word.npos && (is_slash(peek(0)) || peek(0) == ':' || peek(0) == '?'))
        in_uri_ = true;
    }
  }

  void read_host(std::string_view host, bool stands_free) {
    constexpr std::string_view www = "www.";
    if (equals_ignoring_case(host.substr(0, www.size()), www)) {
      add_domain(domain_name(host), linked_);
    } else if (stands_free && is_ip_address(host)) {
      add_address(host, free_);
    } else if (stands_free && host.find('.') != host.npos) {
      const std::string name = domain_name(host);
      if (!is_file_name(name)) add_domain(name, free_);
    }
  }

  // Reads "://user:password@host:port" and stops after the host, because anything may follow it directly.
  void read_authority() {
    ++at_;
    while (is_slash(peek(0))) ++at_;
    std::size_t end = at_;
    while (end < text_.size() && !is_border(text_[end]) && !is_slash(text_[end]) && text_[end] != '?' &&
           text_[end] != '#') {
      ++end;
    }
    const std::size_t user_end = text_.substr(at_, end - at_).rfind('@');
    if (user_end != text_.npos) at_ += user_end + 1;
    const std::size_t begin = at_;
    pass_host_characters();
    in_uri_ = true;
    const std::string_view host = without_dots(text_.substr(begin, at_ - begin));
    if (!add_address(host, linked_)) add_domain(domain_name(host), linked_);
  }

  static bool add_address(std::string_view host, Names& names) {
    std::string address = address_of(host);
    if (address.empty()) return false;
    names.add(std::move(address));
    return true;
  }

  static void add_domain(std::string_view name, Names& names) {
    if (!has_top_level(name)) return;
    const std::string_view domain = registrable_domain(name);
    if (!domain.empty() && is_letter_or_digit(domain.front())) names.add(std::string(domain));
  }

  // A word may hold several names, with an ellipsis between them; hyphens begin items of lists.
  template <typename Action>
  static void for_each_name(std::string_view word, Action action) {
    while (!word.empty()) {
      const std::size_t ellipsis = std::min(word.find(".."), word.size());
      action(without_dots(word.substr(0, ellipsis)));
      word.remove_prefix(ellipsis);
      word.remove_prefix(std::min(word.find_first_not_of('.'), word.size()));
    }
  }

  static std::string_view without_dots(std::string_view name) {
    name.remove_prefix(std::min(name.find_first_not_of("-_."), name.size()));
    return name.substr(0, name.find_last_not_of("-_.") + 1);
  }

  // Whether a word is the rest of a path, or of one in another script.
  bool continues_something(std::size_t begin) const {
    if (begin == 0) return false;
    const char before = text_[begin - 1];
    if (is_slash(before)) return begin < 2 || !is_slash(text_[begin - 2]);
    return !is_ascii(before);
  }

  void pass_host_characters() {
    while (at_ < text_.size() && is_host_character(text_[at_])) ++at_;
  }

  std::string_view rest() const { return text_.substr(at_); }
  char peek(std::size_t ahead) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }

  std::string_view text_;
  std::size_t at_ = 0;
  bool in_uri_ = false;
  Names linked_;  // the hosts of links
  Names free_;    // other host names
};

}  // namespace

FoundNames find_names(std::string_view text, std::size_t most) {
  const std::string plain = unescaped(text);
  return Scanner(plain, most).run();
}

}  // namespace zrl::block_lists
