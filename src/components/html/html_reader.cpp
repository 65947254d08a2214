#include "components/html/html_reader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include <libxml/HTMLparser.h>
#include <libxml/parserInternals.h>

#include "core/text/ascii.h"
#include "core/text/character_sets.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::html {

namespace {

// Elements whose content readers do not see. They end at the next end tag of the same name.
constexpr std::array hidden = {std::string_view("iframe"),   std::string_view("noembed"),
                               std::string_view("noframes"), std::string_view("script"),
                               std::string_view("style"),    std::string_view("template"),
                               std::string_view("title")};

// Elements that begin and end a line.
constexpr std::array blocks = {
    std::string_view("address"),  std::string_view("article"), std::string_view("aside"),
    std::string_view("body"),     std::string_view("caption"), std::string_view("center"),
    std::string_view("dd"),       std::string_view("details"), std::string_view("dir"),
    std::string_view("div"),      std::string_view("dl"),      std::string_view("dt"),
    std::string_view("fieldset"), std::string_view("figure"),  std::string_view("footer"),
    std::string_view("form"),     std::string_view("header"),  std::string_view("html"),
    std::string_view("legend"),   std::string_view("li"),      std::string_view("main"),
    std::string_view("menu"),     std::string_view("nav"),     std::string_view("ol"),
    std::string_view("option"),   std::string_view("section"), std::string_view("summary"),
    std::string_view("table"),    std::string_view("tbody"),   std::string_view("tfoot"),
    std::string_view("thead"),    std::string_view("tr"),      std::string_view("ul")};

constexpr std::array paragraphs = {
    std::string_view("blockquote"), std::string_view("h1"), std::string_view("h2"), std::string_view("h3"),
    std::string_view("h4"),         std::string_view("h5"), std::string_view("h6"), std::string_view("hr"),
    std::string_view("p"),          std::string_view("pre")};

constexpr std::array preformatted = {std::string_view("listing"), std::string_view("pre"),
                                     std::string_view("textarea"), std::string_view("xmp")};

template <std::size_t size>
bool is_one_of(const std::array<std::string_view, size>& sorted, std::string_view name) {
  return std::binary_search(sorted.begin(), sorted.end(), name);
}

constexpr std::string_view name_ends = " \t\r\n\f/>";
// Of the elements that are treated here.
constexpr std::size_t longest_name = 16;
constexpr std::size_t longest_entity = 8;

constexpr std::uint32_t no_break_space = 0xA0;
constexpr std::uint32_t beyond_unicode = 0x110000;

// Numbers of control characters mean the characters of Windows-1252, as in browsers.
std::string utf8_of(std::uint32_t c) {
  if (c <= 0xFF) c = windows_1252_character(static_cast<unsigned char>(c));
  std::string result;
  append_character(result, c == 0 ? U'\xFFFD' : static_cast<char32_t>(c));
  return result;
}

}  // namespace

void HtmlReader::run() {
  while (!rest_.empty()) {
    const std::string_view part = rest_.substr(0, rest_.find('<'));
    text(part);
    rest_.remove_prefix(part.size());
    if (!rest_.empty()) markup();
  }
}

void HtmlReader::text(std::string_view part) {
  while (!part.empty()) {
    const std::string_view plain = part.substr(0, part.find_first_of(std::string_view("&\0", 2)));
    layout_.text(plain);
    part.remove_prefix(plain.size());
    if (part.empty()) return;
    if (part[0] == '&') {
      entity(part);
    } else {
      part.remove_prefix(1);  // a zero byte
    }
  }
}

// An ampersand that begins no entity is text.
void HtmlReader::entity(std::string_view& part) {
  std::size_t end = 1;
  std::uint32_t character = 0;
  if (part.size() > 2 && part[1] == '#') {
    const bool is_hex = part[2] == 'x' || part[2] == 'X';
    const std::size_t begin = is_hex ? 3 : 2;
    const std::string_view digits = is_hex ? "0123456789abcdefABCDEF" : "0123456789";
    end = std::min(part.find_first_not_of(digits, begin), part.size());
    if (end == begin) end = 1;
    for (std::size_t i = begin; i < end && character < beyond_unicode; ++i) {
      const auto digit = static_cast<std::uint32_t>(hex_value(part[i]));
      character = character * (is_hex ? 16 : 10) + digit;
    }
  } else {
    std::size_t name_end = 1;
    while (name_end < part.size() && name_end <= longest_entity && is_letter_or_digit(part[name_end])) {
      ++name_end;
    }
    const std::string name(part.substr(1, name_end - 1));
    const htmlEntityDesc* found = htmlEntityLookup(reinterpret_cast<const xmlChar*>(name.c_str()));
    if (found) {
      end = name_end;
      character = found->value;
    }
  }
  if (end == 1) {
    layout_.text("&");
  } else if (character == no_break_space) {
    layout_.text(" ");
  } else {
    layout_.text(utf8_of(character));
  }
  if (end > 1 && end < part.size() && part[end] == ';') ++end;
  part.remove_prefix(end);
}

// `rest_` begins with "<".
void HtmlReader::markup() {
  const char next = rest_.size() > 1 ? rest_[1] : ' ';
  if (rest_.starts_with("<!--")) {
    comment();
  } else if (is_letter(next) || (next == '/' && rest_.size() > 2 && is_letter(rest_[2]))) {
    tag();
  } else if (next == '!' || next == '?' || next == '/') {  // a declaration, or what browsers ignore
    rest_.remove_prefix(std::min(rest_.find('>'), rest_.size() - 1) + 1);
  } else {
    layout_.text("<");
    rest_.remove_prefix(1);
  }
}

void HtmlReader::comment() {
  rest_.remove_prefix(4);
  if (rest_.starts_with('>') || rest_.starts_with("->")) {  // an empty one
    rest_.remove_prefix(rest_.find('>') + 1);
    return;
  }
  for (std::size_t at = rest_.find("--"); at != rest_.npos; at = rest_.find("--", at + 1)) {
    const std::string_view end = rest_.substr(at + 2);
    const std::size_t length = end.starts_with('>') ? 1 : end.starts_with("!>") ? 2 : 0;
    if (length == 0) continue;
    rest_.remove_prefix(at + 2 + length);
    return;
  }
  rest_ = {};
}

void HtmlReader::tag() {
  const bool closing = rest_[1] == '/';
  rest_.remove_prefix(closing ? 2 : 1);
  const std::string_view written = rest_.substr(0, rest_.find_first_of(name_ends));
  rest_.remove_prefix(written.size());
  skip_to_end_of_tag();
  if (written.size() > longest_name) return;
  const std::string name = lower(written);
  if (closing) {
    end_tag(name);
  } else {
    start_tag(name);
  }
}

// Attribute values between quotes may hold ">". A quote opens a value only behind "=".
void HtmlReader::skip_to_end_of_tag() {
  bool behind_equals = false;
  for (std::size_t at = 0; at < rest_.size(); ++at) {
    const char c = rest_[at];
    if (c == '>') return rest_.remove_prefix(at + 1);
    if (behind_equals && (c == '"' || c == '\'')) {
      at = rest_.find(c, at + 1);
      if (at == rest_.npos) break;
      behind_equals = false;
    } else if (c == '=') {
      behind_equals = true;
    } else if (name_ends.find(c) == name_ends.npos) {
      behind_equals = false;
    }
  }
  rest_ = {};
}

void HtmlReader::skip_content(std::string_view name) {
  for (std::size_t at = rest_.find("</"); at != rest_.npos; at = rest_.find("</", at + 2)) {
    const std::string_view end = rest_.substr(at + 2);
    if (!equals_ignoring_case(end.substr(0, name.size()), name)) continue;
    if (end.size() > name.size() && name_ends.find(end[name.size()]) == name_ends.npos) continue;
    rest_ = end.substr(name.size());
    return skip_to_end_of_tag();
  }
  rest_ = {};
}

void HtmlReader::start_tag(std::string_view name) {
  if (is_one_of(hidden, name)) return skip_content(name);
  if (name == "br") return layout_.line_break();
  if (name == "td" || name == "th") return layout_.next_cell();
  if (name == "li") return layout_.list_item();
  if (is_one_of(paragraphs, name)) layout_.new_paragraph();
  if (is_one_of(blocks, name)) layout_.new_line();
  if (is_one_of(preformatted, name)) layout_.enter_preformatted();
}

void HtmlReader::end_tag(std::string_view name) {
  if (name == "td" || name == "th") return layout_.next_cell();
  if (name == "li") layout_.end_of_list_item();
  if (is_one_of(paragraphs, name)) layout_.new_paragraph();
  if (is_one_of(blocks, name)) layout_.new_line();
  if (is_one_of(preformatted, name)) layout_.leave_preformatted();
}

}  // namespace zrl::html
