#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/web/session.h"

namespace zrl::web {

// All sessions, found by the random token that the browser holds in its cookie. The table keeps
// a digest of the token. On the I/O thread.
class SessionTable {
 public:
  struct Limits {
    std::size_t sessions = 32;  // those whose threads have not ended yet included
    std::size_t tabs = 64;      // of a session; each has a console
    Session::Times times;
    std::chrono::milliseconds sweep{1000};  // how often expired sessions are looked for
  };

  // `loop` and `settings` must outlive the table.
  SessionTable(IoLoop& loop, const ConsoleSettings& settings, const Limits& limits,
               std::function<void(std::string)> on_language);

  // A new session's token; empty if there are too many sessions. One that has had no tab for as long as a
  // lost tab is kept gives way first.
  std::string begin(const std::string& account);
  // Null if there is no such session, or no longer.
  std::shared_ptr<Session> find(std::string_view token);
  // Gives the session another token, and returns it; the old one is worth nothing then. Empty if there is no
  // such session.
  std::string renew(std::string_view token);
  // Ends the session if there is one.
  void end(std::string_view token);
  // Ends the account's sessions but the one with this token.
  void end_others(std::string_view account, std::string_view token);

  // Ends all sessions; `done` is called when the last thread has ended. No session can begin then.
  void stop(std::function<void()> done);

 private:
  using Sessions = std::map<std::string, std::shared_ptr<Session>, std::less<>>;

  bool make_room();
  void sweep_later();
  void sweep();
  void expire(Sessions::iterator found, std::string_view why);
  void leave(Sessions::iterator found, Session::Reason reason);
  void finished(const Session& session);

  IoLoop& loop_;
  const ConsoleSettings& settings_;
  const Limits limits_;
  std::function<void(std::string)> on_language_;
  Sessions sessions_;                           // by digest
  std::list<std::shared_ptr<Session>> ending_;  // whose threads have still to end
  std::function<void()> on_stopped_;
  bool sweeping_ = false;
  bool stopping_ = false;
};

}  // namespace zrl::web
