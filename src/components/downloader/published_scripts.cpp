#include "components/downloader/published_scripts.h"

#include <boost/json.hpp>
#include <cerrno>
#include <limits>
#include <set>

#include "core/text/ascii.h"
#include "core/text/error.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::downloader {

namespace {

namespace json = boost::json;

constexpr std::size_t longest_name = 255;
constexpr std::size_t deepest_nesting = 8;
[[noreturn]] void refuse(const std::string& why) {
  throw Error(EINVAL, "the file of scripts is not valid: " + why);
}

json::value parse(std::string_view text) {
  json::parse_options options;
  options.max_depth = deepest_nesting;
  json::error_code failure;
  json::value result = json::parse({text.data(), text.size()}, failure, {}, options);
  if (failure) refuse(failure.message());
  return result;
}

class Reader {
 public:
  Reader(const json::object& object, std::size_t number) : object_(object), number_(number) {}

  PublishedScript read() const {
    PublishedScript script;
    script.name = name();
    script.content = text("scriptcontent", nullptr);
    script.position = text("sposition", "NEVER");
    script.priority = number("prio");
    script.visible = number("svisible");
    if (script.content.find('\0') != script.content.npos) fail("scriptcontent holds a zero byte");
    if (script.position.size() > longest_name || !is_plain(script.position)) fail("sposition is not valid");
    script.position = upper(script.position);
    return script;
  }

 private:
  [[noreturn]] void fail(const std::string& why) const {
    refuse("object " + std::to_string(number_) + ": " + why);
  }

  // No character that ends a text in a statement, and no control characters.
  static bool is_plain(std::string_view text) { return !has_controls(text) && text.find('\'') == text.npos; }

  std::string name() const {
    std::string result = text("scriptname", nullptr);
    if (result.empty() || result.size() > longest_name || !is_plain(result)) fail("scriptname is not valid");
    return result;
  }

  std::string text(const char* member, const char* missing) const {
    const json::value* value = object_.if_contains(member);
    if (value == nullptr && missing != nullptr) return missing;
    if (value == nullptr || !value->is_string()) fail(std::string(member) + " is no text");
    return {value->get_string().data(), value->get_string().size()};
  }

  std::int32_t number(const char* member) const {
    const json::value* value = object_.if_contains(member);
    if (value == nullptr) return 0;
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t* number = value->if_int64();
    if (number == nullptr || *number < Limits::min() || *number > Limits::max()) {
      fail(std::string(member) + " is no whole number");
    }
    return static_cast<std::int32_t>(*number);
  }

  const json::object& object_;
  std::size_t number_;
};

}  // namespace

std::vector<PublishedScript> read_published_scripts(std::string_view text) {
  if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
  const json::value document = parse(text);
  if (!document.is_array()) refuse("it is no array");
  std::vector<PublishedScript> result;
  std::set<std::string> names;
  for (const json::value& element : document.get_array()) {
    if (!element.is_object()) refuse("element " + std::to_string(result.size() + 1) + " is no object");
    result.push_back(Reader(element.get_object(), result.size() + 1).read());
    if (!names.insert(result.back().name).second) {
      refuse("the name " + printable(result.back().name) + " stands there twice");
    }
  }
  return result;
}

}  // namespace zrl::downloader
