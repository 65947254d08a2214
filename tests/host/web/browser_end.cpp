#include "host/web/browser_end.h"

#include <stdexcept>

namespace zrl::test {

std::optional<json::object> BrowserEnd::receive() {
  const std::optional<std::string> text = next_text();
  if (!text) return {};
  json::object message = json::parse(*text).as_object();
  apply(message);
  return message;
}

json::object BrowserEnd::receive(std::string_view type) {
  while (auto message = receive()) {
    if (message->at("type").as_string() == type) return std::move(*message);
  }
  throw std::runtime_error("closed while waiting for " + std::string(type));
}

std::uint64_t BrowserEnd::send_numbered(json::object message) {
  message["seq"] = ++seq_;
  send(message);
  return seq_;
}

std::uint64_t BrowserEnd::event(std::string_view form, std::string_view control, std::string_view event,
                                const json::object& more) {
  json::object message{{"type", "event"}, {"form", form}, {"control", control}, {"event", event}};
  for (const auto& [name, value] : more) message[name] = value;
  return send_numbered(std::move(message));
}

std::uint64_t BrowserEnd::open(std::string_view page) {
  return send_numbered({{"type", "open"}, {"page", page}});
}

std::uint64_t BrowserEnd::close_form(std::string_view form) {
  return send_numbered({{"type", "close"}, {"form", form}});
}

std::uint64_t BrowserEnd::leave() {
  return send_numbered({{"type", "leave"}});
}

void BrowserEnd::answer(const json::object& box, std::string_view reply) {
  send(json::object{{"type", "answer"}, {"id", box.at("id")}, {"reply", reply}});
}

void BrowserEnd::until_done(std::uint64_t seq) {
  while (auto message = receive()) {
    const json::string& type = message->at("type").as_string();
    if (type != "done" && type != "error") continue;
    if (!message->contains("seq") || message->at("seq").to_number<std::uint64_t>() != seq) continue;
    if (type == "done") return;
    throw std::runtime_error("refused: " + json::serialize(*message));
  }
  throw std::runtime_error("closed while waiting for an event's end");
}

std::string BrowserEnd::until_error(std::uint64_t seq) {
  for (;;) {
    const json::object message = receive("error");
    if (message.contains("seq") && message.at("seq").to_number<std::uint64_t>() == seq) {
      return std::string(message.at("code").as_string());
    }
  }
}

json::object BrowserEnd::rows(std::string_view form, std::string_view control, std::uint64_t start,
                              std::uint64_t count, std::string_view filter) {
  send(json::object{{"type", "rows"},
                    {"form", form},
                    {"control", control},
                    {"request", ++request_},
                    {"start", start},
                    {"count", count},
                    {"filter", filter}});
  for (;;) {
    json::object message = receive("rows");
    if (message.at("request").to_number<std::uint64_t>() == request_) return message;
  }
}

void BrowserEnd::apply(const json::object& message) {
  const json::string& type = message.at("type").as_string();
  if (type == "error") errors.emplace_back(message.at("code").as_string());
  if (type != "form" && type != "change" && type != "closed") return;
  const std::string form(message.at("form").as_string());
  if (type == "closed") {
    forms.erase(form);
  } else if (type == "form") {
    forms[form] = message.at("controls").as_object();
  } else {
    for (const auto& [control, changed] : message.at("controls").as_object()) {
      json::object& held = forms.at(form).at(control).as_object();
      for (const auto& [property, value] : changed.as_object()) held[property] = value;
    }
  }
}

}  // namespace zrl::test
