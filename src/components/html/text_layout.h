#pragma once

#include <string>
#include <string_view>

namespace zrl::html {

// Builds the text that a reader sees: sequences of blanks become one blank, and blocks begin new lines. What
// separates two texts is written only when the second one follows.
class TextLayout {
 public:
  // Text whose blanks collapse, or stay as they are inside preformatted text.
  void text(std::string_view utf8);
  // What follows begins a new line, or comes after an empty line.
  void new_line();
  void new_paragraph();
  void line_break();  // one more line each time
  void next_cell();
  void list_item();
  void end_of_list_item() { item_ = false; }

  void enter_preformatted() { ++preformatted_; }
  void leave_preformatted() {
    if (preformatted_ > 0) --preformatted_;
  }

  std::string take();

 private:
  void begin_text();
  void put_preformatted(std::string_view utf8);

  std::string out_;
  int breaks_ = 0;
  int forced_breaks_ = 0;
  bool blank_ = false;
  bool cell_ = false;
  bool item_ = false;
  std::size_t preformatted_ = 0;
};

}  // namespace zrl::html
