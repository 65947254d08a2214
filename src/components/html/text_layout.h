#pragma once

#include <string>
#include <string_view>

namespace zrl::html {

// Text as a reader sees it: runs of blanks are one blank, line breaks stand where blocks meet. What
// separates two texts is written only when the second one comes.
class TextLayout {
 public:
  // Text whose blanks collapse, or stay as they are inside preformatted text.
  void text(std::string_view utf8);
  // What follows starts a new line, or stands behind an empty one.
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
