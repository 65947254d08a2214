#include "components/dns/spf_macros.h"

#include <algorithm>

#include "core/text/ascii.h"
#include "core/text/domain_names.h"
#include "core/text/text.h"

namespace zrl::dns {

namespace {

constexpr std::string_view domain_letters = "slodiphv";
constexpr std::string_view explanation_letters = "slodiphvcrt";
constexpr std::string_view delimiters = ".-+,/_=";
// The largest number of labels in a name.
constexpr std::size_t most_labels = 128;

// toplabel = ( *alphanum ALPHA *alphanum ) / ( 1*alphanum "-" *( alphanum / "-" ) alphanum )
bool is_top_label(std::string_view label) {
  const auto fits = [](char c) { return is_letter_or_digit(c) || c == '-'; };
  return !label.empty() && is_letter_or_digit(label.front()) && is_letter_or_digit(label.back()) &&
         std::ranges::all_of(label, fits) && !std::ranges::all_of(label, is_digit);
}

// "." toplabel [ "." ], behind anything
bool ends_in_top_label(std::string_view text) {
  if (text.ends_with('.')) text.remove_suffix(1);
  const std::size_t dot = text.rfind('.');
  return dot != text.npos && is_top_label(text.substr(dot + 1));
}

// Everything but the unreserved characters as %XX (RFC 3986, section 2.3).
std::string url_escaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string result;
  for (const char c : text) {
    if (is_letter_or_digit(c) || std::string_view("-._~").find(c) != std::string_view::npos) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result.append({'%', digits[byte >> 4], digits[byte & 0xF]});
    }
  }
  return result;
}

}  // namespace

class MacroString::Parser {
 public:
  Parser(std::string_view text, Use use) : rest_(text), use_(use) {}

  // macro-string = *( macro-expand / macro-literal )
  // domain-spec = macro-string domain-end
  // domain-end = ( "." toplabel [ "." ] ) / macro-expand
  bool parse() {
    while (!rest_.empty()) {
      if (!(rest_.front() == '%' ? macro_expand() : macro_literal())) return false;
    }
    return use_ != Use::domain || ends_in_macro_ || (!parts.empty() && ends_in_top_label(literal_end_));
  }

  std::vector<Part> parts;

 private:
  // macro-literal = %x21-24 / %x26-7E
  bool macro_literal() {
    const char c = rest_.front();
    const bool blank = c == ' ' && use_ == Use::explanation;
    if (!blank && (c <= ' ' || c > '~')) return false;
    if (ends_in_macro_) literal_end_.clear();
    ends_in_macro_ = false;
    literal_end_ += c;
    literal().push_back(c);
    rest_.remove_prefix(1);
    return true;
  }

  // macro-expand = ( "%{" macro-letter transformers *delimiter "}" ) / "%%" / "%_" / "%-"
  bool macro_expand() {
    if (rest_.size() < 2) return false;
    ends_in_macro_ = true;
    const char kind = rest_[1];
    rest_.remove_prefix(2);
    if (kind == '{') return macro();
    if (kind == '%') literal() += '%';
    if (kind == '_') literal() += ' ';
    if (kind == '-') literal() += "%20";
    return kind == '%' || kind == '_' || kind == '-';
  }

  bool macro() {
    const std::size_t end = rest_.find('}');
    if (end == rest_.npos || end == 0) return false;
    std::string_view inside = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);

    Part part;
    part.letter = lower(inside.substr(0, 1)).front();
    part.escapes = part.letter != inside.front();
    const std::string_view letters = use_ == Use::explanation ? explanation_letters : domain_letters;
    if (letters.find(part.letter) == letters.npos) return false;
    inside.remove_prefix(1);
    if (!transformers(inside, part)) return false;
    if (inside.find_first_not_of(delimiters) != inside.npos) return false;
    part.delimiters = inside.empty() ? "." : inside;
    parts.push_back(std::move(part));
    return true;
  }

  // transformers = *DIGIT [ "r" ], the number not being 0
  static bool transformers(std::string_view& inside, Part& part) {
    part.keeps = most_labels;
    if (!inside.empty() && is_digit(inside.front())) part.keeps = 0;
    while (!inside.empty() && is_digit(inside.front())) {
      part.keeps = std::min(most_labels, part.keeps * 10 + static_cast<std::size_t>(inside.front() - '0'));
      inside.remove_prefix(1);
    }
    part.reverses = inside.starts_with('r') || inside.starts_with('R');
    if (part.reverses) inside.remove_prefix(1);
    return part.keeps > 0;
  }

  // The literal part that is being written.
  std::string& literal() {
    if (parts.empty() || parts.back().letter != 0) parts.emplace_back();
    return parts.back().literal;
  }

  std::string_view rest_;
  Use use_;
  bool ends_in_macro_ = false;
  std::string literal_end_;  // what was written since the last macro
};

std::optional<MacroString> MacroString::parse(std::string_view text, Use use) {
  Parser parser(text, use);
  if (!parser.parse()) return std::nullopt;
  MacroString result;
  result.text_ = text;
  result.parts_ = std::move(parser.parts);
  return result;
}

std::string MacroString::expand(const Values& value) const {
  std::string result;
  for (const Part& part : parts_) {
    result += part.letter == 0 ? part.literal : transformed(value(part.letter), part);
  }
  return result;
}

std::string MacroString::expand_to_name(const Values& value) const {
  std::string name = expand(value);
  if (name.ends_with('.')) name.pop_back();
  if (name.size() <= longest_domain_name) return name;
  const std::size_t dot = name.find('.', name.size() - longest_domain_name - 1);
  return dot == name.npos ? std::string() : name.substr(dot + 1);
}

std::string MacroString::transformed(const std::string& value, const Part& part) {
  std::vector<std::string> labels(1);
  for (const char c : value) {
    if (part.delimiters.find(c) == part.delimiters.npos) {
      labels.back() += c;
    } else {
      labels.emplace_back();
    }
  }
  if (part.reverses) std::ranges::reverse(labels);
  const std::size_t skipped = labels.size() - std::min(labels.size(), part.keeps);
  std::string joined;
  for (std::size_t i = skipped; i < labels.size(); ++i) {
    if (i > skipped) joined += '.';
    joined += labels[i];
  }
  return part.escapes ? url_escaped(joined) : joined;
}

}  // namespace zrl::dns
