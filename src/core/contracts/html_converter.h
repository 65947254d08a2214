#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Turns HTML into the text that a reader would see.
class HtmlConverter {
 public:
  static constexpr std::string_view program_id = "mirvan.html";

  virtual ~HtmlConverter() = default;

  // `html` is UTF-8, well-formed or not, of any nesting; the result is well-formed UTF-8 with lines
  // ended by line feeds. Scripts, styles and comments leave nothing. Raises zrl::Error on failure.
  virtual std::string html2txt(std::string_view html) = 0;
};

}  // namespace zrl
