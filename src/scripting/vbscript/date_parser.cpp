#include "scripting/vbscript/date_parser.h"

#include <vector>

#include "scripting/vbscript/dates.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

// Reads a date in any of its forms, piece by piece.
class DateReader {
 public:
  DateReader(std::u16string_view text, const Locale& locale) : text_(text), locale_(locale) {}

  std::optional<double> read() {
    while (skip_blanks(), position_ < text_.size()) {
      const char16_t unit = text_[position_];
      const bool read = is_digit(unit) ? read_number() : is_letter(unit) ? read_word() : read_separator();
      if (!read) return std::nullopt;
    }
    if (numbers_.empty() && month_ == 0 && !has_time_) return std::nullopt;
    double days = 0;
    if (!numbers_.empty() || month_ != 0) {
      const auto date = date_of_numbers();
      if (!date) return std::nullopt;
      days = *date;
    }
    return joined(days, seconds_);
  }

 private:
  struct Number {
    std::int64_t value;
    std::size_t digits;
  };

  void skip_blanks() {
    while (position_ < text_.size() && (text_[position_] == u' ' || text_[position_] == u'\t')) ++position_;
  }

  char16_t at(std::size_t position) const { return position < text_.size() ? text_[position] : u'\0'; }

  std::optional<Number> digits() {
    Number number{0, 0};
    while (is_digit(at(position_))) {
      number.value = number.value * 10 + (text_[position_++] - u'0');
      if (++number.digits > 4) return std::nullopt;
    }
    if (number.digits == 0) return std::nullopt;
    return number;
  }

  bool read_number() {
    const auto number = digits();
    if (!number) return false;
    skip_blanks();
    if (at(position_) == u':') return read_time(number->value);
    if (half_of_day_follows() && !has_time_ && number->value <= 12) {
      hour_ = number->value;
      has_time_ = true;
      return read_half_of_day();
    }
    numbers_.push_back(*number);
    return numbers_.size() <= 3;
  }

  bool read_time(std::int64_t hour) {
    if (has_time_ || hour > 23) return false;
    has_time_ = true;
    hour_ = hour;
    for (std::int64_t* part : {&minute_, &second_}) {
      if (at(position_) != u':') break;
      ++position_;
      skip_blanks();
      const auto number = digits();
      if (!number || number->value > 59) return false;
      *part = number->value;
      skip_blanks();
    }
    return half_of_day_follows() ? read_half_of_day() : count_seconds();
  }

  bool half_of_day_follows() const {
    const char16_t first = to_lower(at(position_));
    const bool two = to_lower(at(position_ + 1)) == u'm' && !is_letter(at(position_ + 2));
    const bool one = !is_letter(at(position_ + 1));
    return (first == u'a' || first == u'p') && (two || one);
  }

  bool read_half_of_day() {
    const bool afternoon = to_lower(at(position_)) == u'p';
    position_ += to_lower(at(position_ + 1)) == u'm' ? 2 : 1;
    if (hour_ > 12) return !afternoon ? false : count_seconds();
    hour_ = hour_ % 12 + (afternoon ? 12 : 0);
    return count_seconds();
  }

  bool count_seconds() {
    seconds_ = hour_ * 3600 + minute_ * 60 + second_;
    return true;
  }

  bool read_separator() {
    const bool after_word = position_ > 0 && is_letter(text_[position_ - 1]);
    const char16_t unit = text_[position_++];
    // Points stand between numbers only where the country writes them; else they end an abbreviation.
    const bool point = unit == u'.' && (after_word || locale_.date_separator == u'.');
    return (unit == u'/' || unit == u'-' || unit == u',' || point) && (!numbers_.empty() || month_ != 0);
  }

  bool read_word() {
    std::size_t end = position_;
    while (is_letter(at(end))) ++end;
    const std::u16string_view word = text_.substr(position_, end - position_);
    position_ = end;
    if (word.size() < 3) return false;
    for (const Locale* locale : {&locale_, &american_locale()}) {
      for (int i = 0; i < 12; ++i) {
        if (!matches(word, locale->months[i], locale->short_months[i])) continue;
        if (month_ != 0) return false;
        month_ = i + 1;
        return true;
      }
      for (int i = 0; i < 7; ++i) {
        if (matches(word, locale->days[i], locale->short_days[i])) return numbers_.empty() && month_ == 0;
      }
    }
    return false;
  }

  static bool matches(std::u16string_view word, std::u16string_view name, std::u16string_view short_name) {
    return equal_ignoring_case(word, name) || equal_ignoring_case(word, short_name) ||
           (word.size() == 3 && equal_ignoring_case(word, name.substr(0, 3)));
  }

  static std::int64_t full_year(const Number& year) {
    if (year.digits > 2) return year.value;
    return year.value + (year.value < 30 ? 2000 : 1900);
  }

  static std::optional<double> date(std::int64_t year, std::int64_t month, std::int64_t day) {
    if (month < 1 || month > 12 || day < 1 || year < 100 || day > days_in_month(year, month))
      return std::nullopt;
    return day_serial(year, month, day);
  }

  static std::int64_t this_year() { return parts_of(now_serial()).year; }

  std::optional<double> date_of_numbers() const {
    const auto& n = numbers_;
    if (month_ != 0) {
      if (n.size() == 2) {
        const bool year_first = n[0].value > 31 || n[0].digits > 2;
        return year_first ? date(full_year(n[0]), month_, n[1].value)
                          : date(full_year(n[1]), month_, n[0].value);
      }
      if (n.size() != 1) return std::nullopt;
      if (n[0].value > 31 || n[0].digits > 2) return date(full_year(n[0]), month_, 1);
      if (const auto day = date(this_year(), month_, n[0].value)) return day;
      return date(full_year(n[0]), month_, 1);
    }
    if (n.size() == 3) return three_numbers();
    if (n.size() == 2) return two_numbers();
    return std::nullopt;
  }

  std::optional<double> three_numbers() const {
    const auto& n = numbers_;
    using Order = Locale::DateOrder;
    if (n[0].digits > 2 || n[0].value > 31) return date(full_year(n[0]), n[1].value, n[2].value);
    const bool year_first = locale_.order == Order::year_month_day && n[2].digits <= 2;
    if (year_first) {
      if (const auto day = date(full_year(n[0]), n[1].value, n[2].value)) return day;
    }
    const bool day_first = locale_.order == Order::day_month_year;
    const std::int64_t month = day_first ? n[1].value : n[0].value;
    const std::int64_t day = day_first ? n[0].value : n[1].value;
    if (const auto found = date(full_year(n[2]), month, day)) return found;
    if (const auto found = date(full_year(n[2]), day, month)) return found;
    return date(full_year(n[0]), n[1].value, n[2].value);
  }

  std::optional<double> two_numbers() const {
    const auto& n = numbers_;
    if (n[1].digits > 2) return date(n[1].value, n[0].value, 1);
    if (n[0].digits > 2) return date(n[0].value, n[1].value, 1);
    const bool day_first = locale_.order == Locale::DateOrder::day_month_year;
    const std::int64_t month = day_first ? n[1].value : n[0].value;
    const std::int64_t day = day_first ? n[0].value : n[1].value;
    if (const auto found = date(this_year(), month, day)) return found;
    if (const auto found = date(this_year(), day, month)) return found;
    return date(full_year(n[1]), n[0].value, 1);
  }

  std::u16string_view text_;
  const Locale& locale_;
  std::size_t position_ = 0;
  std::vector<Number> numbers_;
  std::int64_t month_ = 0;
  bool has_time_ = false;
  std::int64_t hour_ = 0;
  std::int64_t minute_ = 0;
  std::int64_t second_ = 0;
  std::int64_t seconds_ = 0;
};

}  // namespace

std::optional<double> parse_date(std::u16string_view text, const Locale& locale) {
  constexpr std::size_t longest = 128;
  if (text.size() > longest) return std::nullopt;
  return DateReader(text, locale).read();
}

std::optional<double> parse_date_literal(std::u16string_view text) {
  return parse_date(text, american_locale());
}

}  // namespace zrl::vbs
