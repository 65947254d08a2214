#include "components/downloader/list_content.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/text/ascii.h"
#include "core/text/error.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::downloader {

namespace {

constexpr std::size_t kept_bytes = 512;

[[noreturn]] void refuse(const std::string& why) {
  throw Error(EINVAL, "not a list file: " + why);
}

// "html" of "<HTML lang=...>", in lower case; empty if no tag with a name is there.
std::string first_tag(std::string_view text) {
  if (!text.starts_with('<')) return {};
  const auto is_part = [](char c) { return is_letter_or_digit(c) || c == '_' || c == ':' || c == '-'; };
  const auto* const end = std::find_if_not(text.begin() + 1, text.end(), is_part);
  return lower({text.begin() + 1, end});
}

bool begins_like_a_page(std::string_view text) {
  const std::string tag = first_tag(text);
  return text.starts_with("<!") || text.starts_with("<?") || tag == "html" || tag == "head" || tag == "body";
}

bool begins_like_json(std::string_view text) {
  if (!text.starts_with('{') && !text.starts_with('[')) return false;
  const std::string_view inside = trim(text.substr(1));
  return inside.starts_with('"') || inside.starts_with(text.front() == '{' ? '}' : '{');
}

}  // namespace

void ListContent::take(std::string_view bytes) {
  for (const char byte : bytes) {
    count(byte);
    if (beginning_.size() < kept_bytes) keep(byte);
  }
  if (beginning_.size() == kept_bytes) check_beginning();
  end_ += bytes.substr(bytes.size() - std::min(bytes.size(), kept_bytes));
  end_.erase(0, end_.size() - std::min(end_.size(), kept_bytes));
}

void ListContent::finish() {
  end_line();
  check_beginning();
  // A document of XML ends with the tag that it began with.
  const std::string tag = first_tag(beginning_);
  if (!tag.empty() && lower(trim(end_)).ends_with("</" + tag + ">")) refuse("the server sends XML");
}

void ListContent::count(char byte) {
  if (byte == '\n') {
    end_line();
    ++line_number_;
    line_length_ = 0;
  } else {
    if (is_control(byte) && byte != '\t' && byte != '\r') {
      refuse("line " + std::to_string(line_number_) + " holds the control character " +
             std::to_string(static_cast<int>(byte)));
    }
    // Looked at before the whole of an endless line has arrived: a line end may take one byte, a mark three.
    if (++line_length_ > longest_list_line + byte_order_mark.size() + 1) end_line();
  }
  last_ = byte;
}

void ListContent::keep(char byte) {
  if (beginning_.empty()) {
    const bool continues_mark = line_number_ == 1 && line_length_ == mark_length_ + 1;
    if (continues_mark && mark_length_ < byte_order_mark.size() && byte == byte_order_mark[mark_length_]) {
      ++mark_length_;
      return;
    }
    if (trim({&byte, 1}).empty()) return;
  }
  beginning_ += byte;
}

void ListContent::end_line() {
  const bool has_mark = line_number_ == 1 && mark_length_ == byte_order_mark.size();
  const std::size_t extra = (has_mark ? mark_length_ : 0) + (last_ == '\r' ? 1 : 0);
  if (line_length_ > longest_list_line + extra) {
    refuse("line " + std::to_string(line_number_) + " is too long");
  }
}

void ListContent::check_beginning() {
  if (std::exchange(beginning_is_checked_, true)) return;
  const std::string_view content = beginning_;
  if (content.empty()) return;
  if (kind_ == ListKind::texts) {
    if (begins_like_a_page(content)) refuse("the server sends a web page or XML");
    if (begins_like_json(content)) refuse("the server sends JSON");
  } else {
    if (content.front() == '<') refuse("the server sends a web page or XML");
    if (content.front() == '{' || content.front() == '[') refuse("the server sends JSON");
  }
}

}  // namespace zrl::downloader
