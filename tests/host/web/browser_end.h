#pragma once

#include <boost/json.hpp>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::test {

namespace json = boost::json;

// How long the other end may be silent before a test gives up; sanitizers make everything slower.
inline constexpr std::chrono::seconds patience{60};

// What a browser does on its end of the protocol, whatever carries the messages.
class BrowserEnd {
 public:
  virtual ~BrowserEnd() = default;

  // What the browser holds of each form: kept up to date by receive().
  std::map<std::string, json::object> forms;
  // The codes of all errors that were received.
  std::vector<std::string> errors;

  void send(const json::value& message) { transmit(json::serialize(message)); }
  void send_text(const std::string& text) { transmit(text); }

  // The next message, or nothing if the end was closed. Raises if none comes while `patience` lasts.
  std::optional<json::object> receive();
  // The next message of this type; those before it are passed over. Raises if the end is closed.
  json::object receive(std::string_view type);

  // Sends an event with the next number and returns that number.
  std::uint64_t event(std::string_view form, std::string_view control, std::string_view event,
                      const json::object& more = {});
  std::uint64_t click(std::string_view form, std::string_view control) {
    return event(form, control, "click");
  }
  std::uint64_t open(std::string_view page);
  std::uint64_t close_form(std::string_view form);
  std::uint64_t leave();
  void answer(const json::object& box, std::string_view reply);
  // Receives up to the message that tells that the event has been handled. Raises if it is refused.
  void until_done(std::uint64_t seq);
  // Receives up to the error about the event; returns its code.
  std::string until_error(std::uint64_t seq);
  json::object rows(std::string_view form, std::string_view control, std::uint64_t start, std::uint64_t count,
                    std::string_view filter = {});

  const json::value& held(const std::string& form, std::string_view control,
                          std::string_view property) const {
    return forms.at(form).at(control).at(property);
  }
  void start_numbering_anew() { seq_ = 0; }

 protected:
  virtual void transmit(const std::string& text) = 0;
  virtual std::optional<std::string> next_text() = 0;

 private:
  std::uint64_t send_numbered(json::object message);
  void apply(const json::object& message);

  std::uint64_t seq_ = 0;
  std::uint64_t request_ = 0;
};

}  // namespace zrl::test
