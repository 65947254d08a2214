#include "host/web/messages.h"

#include <array>
#include <boost/json.hpp>
#include <limits>
#include <stdexcept>
#include <utility>

namespace zrl::web {

namespace {

namespace json = boost::json;
using Type = BrowserMessage::Type;
using Act = BrowserMessage::Act;

constexpr std::size_t max_depth = 8;
constexpr std::int64_t longest_side = 1000;  // of a terminal

constexpr std::array<std::pair<std::string_view, Type>, 17> types = {{{"open", Type::open},
                                                                      {"event", Type::event},
                                                                      {"close", Type::close},
                                                                      {"leave", Type::leave},
                                                                      {"answer", Type::answer},
                                                                      {"rows", Type::rows},
                                                                      {"cells", Type::cells},
                                                                      {"record", Type::record},
                                                                      {"captions", Type::captions},
                                                                      {"find", Type::find},
                                                                      {"language", Type::language},
                                                                      {"input", Type::input},
                                                                      {"resize", Type::resize},
                                                                      {"taken", Type::taken},
                                                                      {"end", Type::end},
                                                                      {"active", Type::active},
                                                                      {"look", Type::look}}};
constexpr std::array<std::pair<std::string_view, Act>, 10> acts = {{{"click", Act::click},
                                                                    {"text", Act::type},
                                                                    {"choose", Act::choose},
                                                                    {"scroll", Act::scroll},
                                                                    {"remove", Act::remove},
                                                                    {"keys", Act::keys},
                                                                    {"sort", Act::sort},
                                                                    {"filter", Act::filter},
                                                                    {"fetch", Act::fetch},
                                                                    {"reload", Act::reload}}};
constexpr std::array<std::pair<std::string_view, BoxReply>, 3> replies = {
    {{"ok", BoxReply::ok}, {"cancel", BoxReply::cancel}, {"other", BoxReply::other}}};

// Raised for a member that is missing or of the wrong kind.
class BadMember : public std::runtime_error {
 public:
  BadMember(std::string_view name, std::string_view wanted)
      : std::runtime_error(std::string(name) + " must be " + std::string(wanted)) {}
};

std::string text_of(const json::object& object, std::string_view name) {
  const json::value* value = object.if_contains(name);
  if (value == nullptr || !value->is_string()) throw BadMember(name, "a text");
  return {value->get_string().data(), value->get_string().size()};
}

std::int64_t number_of(const json::object& object, std::string_view name) {
  const json::value* value = object.if_contains(name);
  if (value == nullptr || !value->is_int64()) throw BadMember(name, "a whole number");
  return value->get_int64();
}

std::uint64_t count_of(const json::object& object, std::string_view name) {
  const std::int64_t number = number_of(object, name);
  if (number < 0) throw BadMember(name, "a number from 0 on");
  return static_cast<std::uint64_t>(number);
}

template <typename Value, std::size_t size>
Value one_of(const std::array<std::pair<std::string_view, Value>, size>& known, const json::object& object,
             std::string_view name) {
  const std::string text = text_of(object, name);
  for (const auto& [word, value] : known) {
    if (word == text) return value;
  }
  throw BadMember(name, "one that is known");
}

// A view of a list; without `order` it is in that of the list.
void read_view(const json::object& object, BrowserMessage& message) {
  message.text = text_of(object, "filter");
  if (!object.contains("order")) return;
  const std::optional<ListOrder> order = list_order_of(text_of(object, "order"));
  if (!order) throw BadMember("order", "one that is known");
  message.order = *order;
}

std::vector<BrowserMessage::Range> ranges_of(const json::object& object) {
  constexpr std::string_view wanted = "pairs of positions that count up";
  const json::value* value = object.if_contains("ranges");
  if (value == nullptr || !value->is_array()) throw BadMember("ranges", wanted);
  std::vector<BrowserMessage::Range> ranges;
  std::int64_t next = 0;
  for (const json::value& pair : value->get_array()) {
    const json::array* ends = pair.if_array();
    if (ends == nullptr || ends->size() != 2 || !(*ends)[0].is_int64() || !(*ends)[1].is_int64()) {
      throw BadMember("ranges", wanted);
    }
    const std::int64_t first = (*ends)[0].get_int64();
    const std::int64_t last = (*ends)[1].get_int64();
    if (first < next || last < first || last == std::numeric_limits<std::int64_t>::max()) {
      throw BadMember("ranges", wanted);
    }
    ranges.push_back({static_cast<std::uint64_t>(first), static_cast<std::uint64_t>(last)});
    next = last + 1;
  }
  return ranges;
}

StringList keys_of(const json::object& object) {
  const json::value* value = object.if_contains("keys");
  if (value == nullptr || !value->is_array()) throw BadMember("keys", "a list of texts");
  StringList keys;
  for (const json::value& key : value->get_array()) {
    if (!key.is_string()) throw BadMember("keys", "a list of texts");
    keys.push_back(key.get_string());
  }
  return keys;
}

void read_event(const json::object& object, BrowserMessage& message) {
  message.form = text_of(object, "form");
  message.control = text_of(object, "control");
  message.act = one_of(acts, object, "event");
  const bool has_text = message.act == Act::type || message.act == Act::sort || message.act == Act::filter;
  if (has_text) message.text = text_of(object, "text");
  if (message.act == Act::keys) message.keys = keys_of(object);
  if (message.act == Act::choose) message.number = number_of(object, "index");
  if (message.act == Act::scroll) message.number = number_of(object, "value");
  if (message.act != Act::remove) return;
  read_view(object, message);
  message.revision = count_of(object, "revision");
  message.ranges = ranges_of(object);
}

void read_reply(const json::object& object, BrowserMessage& message) {
  message.id = count_of(object, "id");
  message.reply = one_of(replies, object, "reply");
}

void read_window(const json::object& object, BrowserMessage& message) {
  message.request = count_of(object, "request");
  message.start = count_of(object, "start");
  message.count = count_of(object, "count");
}

void read_search(const json::object& object, BrowserMessage& message) {
  constexpr std::size_t longest = 256;
  message.request = count_of(object, "request");
  message.text = text_of(object, "text");
  if (message.text.size() > longest) throw BadMember("text", "of 256 bytes at most");
  const json::value* from = object.if_contains("from");
  if (from == nullptr || from->is_null()) return;
  if (!from->is_object()) throw BadMember("from", "a place");
  message.from =
      EntrySearch::Place{count_of(from->get_object(), "list"), number_of(from->get_object(), "row")};
}

std::uint16_t side_of(const json::object& object, std::string_view name) {
  const std::int64_t number = number_of(object, name);
  if (number < 1 || number > longest_side) throw BadMember(name, "a number from 1 to 1000");
  return static_cast<std::uint16_t>(number);
}

BrowserMessage read(const json::object& object) {
  BrowserMessage message;
  message.type = one_of(types, object, "type");
  if (message.has_seq()) message.seq = count_of(object, "seq");
  switch (message.type) {
    case Type::open:
      message.page = text_of(object, "page");
      if (object.contains("query")) message.query = text_of(object, "query");
      break;
    case Type::event:
      read_event(object, message);
      break;
    case Type::close:
      message.form = text_of(object, "form");
      break;
    case Type::answer:
      read_reply(object, message);
      break;
    case Type::rows:
      read_window(object, message);
      message.form = text_of(object, "form");
      message.control = text_of(object, "control");
      read_view(object, message);
      if (object.contains("index")) message.sought = count_of(object, "index");
      if (object.contains("find")) message.sought_text = text_of(object, "find");
      break;
    case Type::cells:
      read_window(object, message);
      message.form = text_of(object, "form");
      message.control = text_of(object, "control");
      if (object.contains("key")) message.sought_text = text_of(object, "key");
      break;
    case Type::record:
      read_window(object, message);
      break;
    case Type::find:
      read_search(object, message);
      break;
    case Type::language:
      message.text = text_of(object, "language");
      if (message.text != "english" && message.text != "german")
        throw BadMember("language", "one that is known");
      break;
    case Type::input:
      message.id = count_of(object, "id");
      message.text = text_of(object, "text");
      break;
    case Type::resize:
      message.id = count_of(object, "id");
      message.columns = side_of(object, "columns");
      message.lines = side_of(object, "rows");
      break;
    case Type::taken:
      message.id = count_of(object, "id");
      message.position = count_of(object, "position");
      break;
    case Type::end:
      message.id = count_of(object, "id");
      break;
    case Type::captions:
    case Type::leave:
    case Type::active:
    case Type::look:
    case Type::upload:
      break;
  }
  return message;
}

}  // namespace

std::variant<BrowserMessage, Malformed> parse_message(std::string_view text) {
  json::parse_options options;
  options.max_depth = max_depth;
  boost::system::error_code failure;
  json::monotonic_resource memory;
  const json::value parsed = json::parse(text, failure, &memory, options);
  if (failure) return Malformed{"no JSON: " + failure.message(), {}};
  if (!parsed.is_object()) return Malformed{"no object", {}};
  const json::object& object = parsed.get_object();
  try {
    return read(object);
  } catch (const BadMember& failed) {
    Malformed malformed{failed.what(), {}};
    const json::value* seq = object.if_contains("seq");
    if (seq != nullptr && seq->is_int64() && seq->get_int64() >= 0) {
      malformed.seq = static_cast<std::uint64_t>(seq->get_int64());
    }
    return malformed;
  }
}

}  // namespace zrl::web
