#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zrl {

class Console;
class HtmlConverter;

// HTML as plain text, by the component HtmlConverter. The component is created on first use and kept. Owned
// by the console, which outlives it; pages reach it as Console::html_text().
class HtmlText {
 public:
  explicit HtmlText(Console& console) : console_(console) {}

  // Text and result are UTF-8. Returns `html` unchanged if the component is missing, which is tried again at
  // the next call, and the empty text if the conversion fails. Both are recorded as failed reads. Never
  // throws.
  std::string html_to_text(std::string_view html);

 private:
  Console& console_;
  std::shared_ptr<HtmlConverter> converter_;
};

}  // namespace zrl
