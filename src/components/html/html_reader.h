#pragma once

#include <string_view>

#include "components/html/text_layout.h"

namespace zrl::html {

// Reads HTML from front to back, as browsers cut it into tags and text, and writes what a reader sees
// into a layout. No tree is built, so that nesting costs nothing.
class HtmlReader {
 public:
  // `html` is well-formed UTF-8.
  HtmlReader(std::string_view html, TextLayout& layout) : rest_(html), layout_(layout) {}

  void run();

 private:
  void text(std::string_view part);
  void entity(std::string_view& part);
  void markup();
  void comment();
  void tag();
  void skip_to_end_of_tag();
  void skip_content(std::string_view name);
  void start_tag(std::string_view name);
  void end_tag(std::string_view name);

  std::string_view rest_;
  TextLayout& layout_;
};

}  // namespace zrl::html
