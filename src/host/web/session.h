#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "host/web/audit.h"
#include "host/web/tab.h"
#include "host/web/transport.h"

namespace zrl::web {

// A sign-in, with the tabs of the browser that it was made in: its time limits, and what holds for all tabs
// together. It lives on while no tab is connected. All calls are made on the I/O thread.
class Session {
 public:
  using Clock = Tab::Clock;
  using Times = SessionTimes;

  // Called on the I/O thread.
  struct Callbacks {
    std::function<void(Session&)> finished;  // end() was called, and all threads are over: the session can go
    std::function<void(std::string)> language_is;
  };

  // What is passed by reference must outlive the session.
  Session(IoLoop& loop, const ConsoleSettings& settings, const Times& times, std::size_t most_tabs,
          std::string account, Callbacks callbacks);

  const std::string& account() const { return account_; }

  // How sure a browser is that a tab is its own: a browser that duplicates a tab gives both the same id.
  enum class Claim : std::uint8_t { own, maybe_a_copy };
  // The listener for a WebSocket of the tab with this id. A tab that is not known, and a copy of one that is
  // connected, gets a console of its own, and an id, with the greeting. If there are too many tabs, the
  // listener closes the WebSocket with the code 4003.
  std::shared_ptr<ChannelListener> new_listener(std::string_view tab, Claim claim);

  // A file that one of the tabs offers, by its token. It stays on offer if only the head of the answer is
  // asked for.
  Response download(std::string_view token, bool head_only = false);
  // What receives the file that a browser sends to the tab, or the response that refuses it.
  std::variant<std::monostate, Response, std::shared_ptr<BodySink>> receive_upload(const Request& request,
                                                                                   std::string_view tab);

  // Why the session's time is over; nothing while it is not.
  std::optional<std::string_view> expiry(Clock::time_point now) const;
  // Ends the tabs whose line was lost too long ago.
  void end_lost_tabs(Clock::time_point now);
  // Since when there has been no tab any more; nothing while there are some, or have been none yet.
  std::optional<Clock::time_point> empty_since() const { return tabs_.empty() ? emptied_ : std::nullopt; }

  using Reason = Tab::Reason;
  // Ends all tabs. `finished` is called, at once or later.
  void end(Reason reason);

 private:
  class UploadSink;
  using Tabs = std::map<std::string, std::shared_ptr<Tab>, std::less<>>;

  static constexpr int most_uploads = 4;  // at a time, of all tabs

  // Whether there is room for one more, made if need be by the end of a page that the browser has left.
  bool make_room();
  std::shared_ptr<Tab> new_tab();
  void end_tab(Tabs::iterator found, Reason reason);
  void forget(const Tab& tab);
  void finished(const Tab& tab);
  void finish_if_over();
  void acted() { last_act_ = Clock::now(); }

  IoLoop& loop_;
  const ConsoleSettings& settings_;
  const Times& times_;
  const std::size_t most_tabs_;
  const std::string account_;
  const Callbacks callbacks_;
  AuditLog audit_log_;  // of downloads
  TerminalPlaces terminals_;
  // Of uploads that are under way: their number may outlive the session.
  std::shared_ptr<int> uploads_ = std::make_shared<int>(0);

  Tabs tabs_;                               // by id
  std::list<std::shared_ptr<Tab>> ending_;  // whose threads have still to end
  std::optional<Clock::time_point> emptied_;
  const Clock::time_point began_ = Clock::now();
  Clock::time_point last_act_ = began_;
  bool ended_ = false;
  bool finished_ = false;
};

}  // namespace zrl::web
