#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zrl {

class Console;
class HtmlConverter;

// HTML as plain text. The component is created on first use and kept.
class HtmlText {
 public:
  explicit HtmlText(Console& console) : console_(console) {}

  // `html` as it is where there is no component; empty if the conversion fails. Both failures are
  // recorded as failed reads. Never throws.
  std::string html_to_text(std::string_view html);

 private:
  Console& console_;
  std::shared_ptr<HtmlConverter> converter_;
};

}  // namespace zrl
