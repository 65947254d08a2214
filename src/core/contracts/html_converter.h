#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Turns HTML into the text that a reader would see. An object keeps nothing between two calls.
class HtmlConverter {
 public:
  static constexpr std::string_view program_id = "mirvan.html";

  virtual ~HtmlConverter() = default;

  // `html` is UTF-8; neither its encoding nor its markup need be well-formed, and it may be nested to any
  // depth, because it comes from strangers' mails. The result is well-formed UTF-8, its lines ended by line
  // feeds. Scripts, styles and comments are dropped; nothing that the HTML refers to is fetched. Raises
  // zrl::Error on failure.
  virtual std::string html2txt(std::string_view html) = 0;
};

}  // namespace zrl
