#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zrl {

// A piece of statement text that is written in the program. It can be made from a string literal
// and from nothing else, at compile time, so that no data can become statement text. It lives as long as the
// program.
class Literal {
 public:
  template <std::size_t N>
  consteval Literal(const char (&text)[N]) : text_(text, N - 1) {}  // NOLINT(google-explicit-constructor)

  constexpr std::string_view text() const { return text_; }
  constexpr bool empty() const { return text_.empty(); }

 private:
  std::string_view text_;
};

// A piece of data inside a statement. It refers to the caller's text, which must live until the full
// expression that builds the statement ends; the statement holds a copy.
class Value {
 public:
  enum class Kind : char { text = 1, number = 2 };

  Kind kind;
  std::string_view text;
  bool secret = false;
};

// Data that stands between single quotes in the statement. UTF-8; it is not escaped.
inline Value value(std::string_view text) {
  return {Value::Kind::text, text};
}

// The same for a password: it reaches the database unchanged, and public_text() hides it.
inline Value secret(std::string_view text) {
  return {Value::Kind::text, text, true};
}

// Data that stands without quotes. A text that is no whole number of 64 bits makes the statement malformed.
inline Value number(std::string_view text) {
  return {Value::Kind::number, text};
}

// A statement, built from literals and values:
//
//   execute("UPDATE pop3 set leave=" + number(flag) + " where entry='" + value(account) + "'");
//
// Text values stand inside single quotes that the literals open and close, numbers outside. A
// text value that holds an apostrophe or a zero byte, a value in the wrong place, or quotes that
// are left open make the statement malformed: executing it raises an error, and it never reaches the
// database engine. Building a malformed one raises nothing.
//
// Components bind the values as parameters, so a value never becomes SQL. A statement owns its texts and may
// be copied and kept. Fragments that follow "where" are statements too, then called conditions.
class Statement {
 public:
  // One more raises std::length_error.
  static constexpr std::size_t max_values = 16;

  Statement() = default;
  Statement(Literal literal) { append(literal); }  // NOLINT(google-explicit-constructor)

  Statement& append(Literal literal);
  Statement& append(const Value& value);
  // Makes the statement malformed for a reason of the caller's, which is not copied: a literal.
  Statement& refuse(const char* why) {
    fault_ = why;
    return *this;
  }

  // The statement as one text, values in their places: for the record, not for the engine.
  std::string text() const { return written(Secrets::shown); }
  // The same with asterisks for each secret, whatever its length: for files and screens.
  std::string public_text() const { return written(Secrets::hidden); }
  bool has_secrets() const { return secrets_ != 0; }
  bool empty() const { return skeleton_.empty(); }

  // Why the statement must not be executed, for people; empty if it may be. The last fault that was found.
  std::string_view fault() const;

  // The literal text, with one byte (a Value::Kind, 1 or 2) in the place of each value. Statements of the
  // same shape have the same skeleton, by which components keep compiled statements.
  const std::string& skeleton() const { return skeleton_; }
  // The values in their order; `index` must be below the number of such bytes. The view is valid until the
  // statement is changed.
  std::string_view value_at(std::size_t index) const;

 private:
  enum class Secrets : bool { hidden, shown };
  std::string written(Secrets secrets) const;

  std::string skeleton_;
  std::string values_;
  std::array<std::uint32_t, max_values> ends_{};
  std::uint16_t secrets_ = 0;  // a bit a value
  std::uint8_t value_count_ = 0;
  bool inside_quotes_ = false;
  const char* fault_ = "";
};

// A sum begins with a literal; the statement is built in place, without copies of what is there already.
inline Statement operator+(Literal left, const Value& right) {
  return std::move(Statement(left).append(right));
}
inline Statement operator+(Literal left, Literal right) {
  return std::move(Statement(left).append(right));
}
inline Statement operator+(Statement&& left, Literal right) {
  return std::move(left.append(right));
}
inline Statement operator+(Statement&& left, const Value& right) {
  return std::move(left.append(right));
}

// "DELETE FROM table where column='text'". Table and column are not quoted.
Statement delete_from(Literal table, Literal column, std::string_view text);

// "INSERT INTO table (column) VALUES ('text')". A text of blanks makes the statement malformed: a row without
// a name would match everything, or nothing.
Statement insert_into(Literal table, Literal column, std::string_view text);

}  // namespace zrl
