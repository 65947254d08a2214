#include "core/text/row_filter.h"

#include <algorithm>
#include <optional>

#include "core/text/ascii.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr FilterFault fault_at(std::size_t column, std::string_view text) {
  return {column, text, {}};
}

class Parser {
 public:
  Parser(std::string_view text, std::span<const std::string_view> fields) : text_(text), fields_(fields) {}

  std::optional<FilterFault> parse(std::vector<FilterTerm>& terms) {
    while (true) {
      while (!at_end() && is_blank(here())) ++place_;
      if (at_end()) return {};
      if (terms.size() == most_filter_terms) {
        return FilterFault{column(), "The filter has more than %1 parts", std::to_string(most_filter_terms)};
      }
      FilterTerm term;
      term.column = column();
      if (auto fault = take_field(term)) return fault;
      if (auto fault = take_value(term)) return fault;
      terms.push_back(std::move(term));
    }
  }

 private:
  bool at_end() const { return place_ == text_.size(); }
  char here() const { return text_[place_]; }
  std::size_t column() const { return character_count(text_.substr(0, place_)) + 1; }

  // What could be the name of a field with its colon; not the start of an IPv6 address.
  std::optional<FilterFault> take_field(FilterTerm& term) {
    std::size_t end = place_;
    while (end < text_.size() && (is_letter(text_[end]) || text_[end] == '-' || text_[end] == '_')) ++end;
    if (end == place_ || end == text_.size() || text_[end] != ':') return {};
    const std::string word = lower(text_.substr(place_, end - place_));
    const auto found = std::ranges::find(fields_, word);
    if (found != fields_.end()) {
      term.field = *found;
      place_ = end + 1;
      return {};
    }
    const bool is_group =
        word.size() <= 4 && std::ranges::all_of(word, [](char c) { return hex_value(c) >= 0; });
    if (is_group) return {};
    return FilterFault{column(), "\"%1:\" is no field", word};
  }

  std::optional<FilterFault> take_value(FilterTerm& term) {
    const std::size_t start = column();
    const bool quoted = !at_end() && here() == '"';
    if (quoted) {
      if (auto fault = take_quoted(term.value)) return fault;
    } else {
      while (!at_end() && !is_blank(here()) && here() != '"') term.value += text_[place_++];
      if (!at_end() && here() == '"') return fault_at(column(), "A quote begins within a word");
    }
    if (!at_end() && !is_blank(here()))
      return fault_at(column(), "After the closing quote a blank is missing");
    if (term.value.empty() && !(quoted && !term.field.empty())) {
      return term.field.empty()
                 ? fault_at(start, "Nothing stands between the quotes")
                 : FilterFault{start, "A value is missing after \"%1:\"", std::string(term.field)};
    }
    if (term.value.size() > longest_filter_value) return fault_at(start, "The text is too long");
    return {};
  }

  std::optional<FilterFault> take_quoted(std::string& value) {
    const std::size_t start = column();
    for (++place_; !at_end(); ++place_) {
      if (here() != '"') {
        value += here();
      } else if (place_ + 1 < text_.size() && text_[place_ + 1] == '"') {
        value += text_[place_++];
      } else {
        ++place_;
        return {};
      }
    }
    return fault_at(start, "The closing quote is missing");
  }

  std::string_view text_;
  std::span<const std::string_view> fields_;
  std::size_t place_ = 0;
};

}  // namespace

std::variant<std::vector<FilterTerm>, FilterFault> parse_filter(std::string_view text,
                                                                std::span<const std::string_view> fields) {
  std::vector<FilterTerm> terms;
  if (auto fault = Parser(text, fields).parse(terms)) return std::move(*fault);
  return terms;
}

std::string like_pattern(std::string_view value) {
  std::string pattern;
  for (const char c : value) {
    if (c == '%' || c == '_' || c == '!') pattern += '!';
    pattern += c == '\'' || c == '\0' ? '_' : c;
  }
  return pattern;
}

std::string filter_term(std::string_view field, std::string_view value) {
  const bool plain =
      !value.empty() && std::ranges::none_of(value, [](char c) { return is_blank(c) || c == '"'; });
  std::string term;
  if (!field.empty()) term.append(field).append(":");
  // Without a field, what stands before a colon would be taken for one.
  if (plain && (!field.empty() || value.find(':') == value.npos)) return term.append(value);
  term += '"';
  for (const char c : value) term.append(c == '"' ? 2 : 1, c);
  return term += '"';
}

}  // namespace zrl
