#include "core/contracts/statement.h"

#include <algorithm>
#include <stdexcept>

#include "core/text/text.h"

namespace zrl {

Statement& Statement::append(Literal literal) {
  const std::string_view text = literal.text();
  if (std::count(text.begin(), text.end(), '\'') % 2 != 0) inside_quotes_ = !inside_quotes_;
  skeleton_ += text;
  return *this;
}

Statement& Statement::append(const Value& value) {
  if (value_count_ == max_values) throw std::length_error("too many values in a statement");
  if (value.kind == Value::Kind::text) {
    if (!inside_quotes_) fault_ = "a text stands outside quotes";
    if (value.text.find('\'') != value.text.npos) fault_ = "syntax error: the text holds an apostrophe";
    if (value.text.find('\0') != value.text.npos) fault_ = "syntax error: the text holds a zero byte";
  } else {
    if (inside_quotes_) fault_ = "a number stands inside quotes";
    if (!to_number(value.text)) fault_ = "syntax error: not a number";
  }
  if (value.secret) secrets_ = static_cast<std::uint16_t>(secrets_ | 1u << value_count_);
  skeleton_ += static_cast<char>(value.kind);
  values_ += value.text;
  ends_[value_count_++] = static_cast<std::uint32_t>(values_.size());
  return *this;
}

std::string Statement::written(Secrets secrets) const {
  std::string result;
  result.reserve(skeleton_.size() + values_.size());
  std::size_t next = 0;
  for (const char c : skeleton_) {
    if (c == static_cast<char>(Value::Kind::text) || c == static_cast<char>(Value::Kind::number)) {
      const bool hide = secrets == Secrets::hidden && (secrets_ >> next & 1u) != 0;
      result += hide ? "********" : value_at(next);
      ++next;
    } else {
      result += c;
    }
  }
  return result;
}

std::string_view Statement::fault() const {
  if (*fault_ == '\0' && inside_quotes_) return "syntax error: unterminated quotes";
  return fault_;
}

std::string_view Statement::value_at(std::size_t index) const {
  const std::uint32_t begin = index == 0 ? 0 : ends_[index - 1];
  return std::string_view(values_).substr(begin, ends_[index] - begin);
}

Statement delete_from(Literal table, Literal column, std::string_view text) {
  return "DELETE FROM " + table + " where " + column + "='" + value(text) + "'";
}

Statement insert_into(Literal table, Literal column, std::string_view text) {
  Statement insertion = "INSERT INTO " + table + " (" + column + ") VALUES ('" + value(text) + "')";
  if (trim(text).empty()) insertion.refuse("nothing is stored: the entry is empty");
  return insertion;
}

}  // namespace zrl
