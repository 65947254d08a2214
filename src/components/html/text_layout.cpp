#include "components/html/text_layout.h"

#include <algorithm>

namespace zrl::html {

namespace {

constexpr std::string_view blanks = " \t\r\n\f";
constexpr int most_breaks = 2;  // never more than one empty line

}  // namespace

void TextLayout::text(std::string_view utf8) {
  if (preformatted_ > 0) return put_preformatted(utf8);
  while (!utf8.empty()) {
    const std::size_t word = utf8.find_first_not_of(blanks);
    if (word != 0) blank_ = true;
    if (word == utf8.npos) return;
    utf8.remove_prefix(word);
    const std::string_view found = utf8.substr(0, utf8.find_first_of(blanks));
    begin_text();
    out_ += found;
    utf8.remove_prefix(found.size());
  }
}

void TextLayout::put_preformatted(std::string_view utf8) {
  while (!utf8.empty()) {
    const std::string_view line = utf8.substr(0, utf8.find('\n'));
    utf8.remove_prefix(line.size());
    const std::string_view shown = line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
    if (!shown.empty()) {
      begin_text();
      out_ += shown;
    }
    if (utf8.empty()) return;
    line_break();
    utf8.remove_prefix(1);
  }
}

void TextLayout::new_line() {
  breaks_ = std::max(breaks_, 1);
}

void TextLayout::new_paragraph() {
  breaks_ = most_breaks;
}

void TextLayout::line_break() {
  ++forced_breaks_;
}

void TextLayout::next_cell() {
  cell_ = true;
}

void TextLayout::list_item() {
  new_line();
  item_ = true;
}

void TextLayout::begin_text() {
  const int breaks = std::min(std::max(breaks_, forced_breaks_), most_breaks);
  if (!out_.empty()) {
    if (breaks > 0) {
      out_.append(static_cast<std::size_t>(breaks), '\n');
    } else if (cell_) {
      out_ += '\t';
    } else if (blank_) {
      out_ += ' ';
    }
  }
  if (item_) out_ += "* ";
  breaks_ = 0;
  forced_breaks_ = 0;
  blank_ = cell_ = item_ = false;
}

std::string TextLayout::take() {
  return std::move(out_);
}

}  // namespace zrl::html
