#pragma once

#include <cstdint>
#include <string>

namespace zrl::web {

// Whose console it is.
struct TabIdentity {
  std::string account;
  std::string tab;  // what the browser asks for it by once its WebSocket was lost; no credential
};

// Where a tab's thread sends what concerns the browser. All calls are made on that thread; none of them
// waits.
class SessionOutput {
 public:
  virtual ~SessionOutput() = default;

  // Sends a message, or drops it if the browser has another connection by now.
  virtual void send(std::uint64_t connection, std::string message) = 0;
  // The browser has sent too many malformed messages; its connection is to be closed.
  virtual void violated(std::uint64_t connection) = 0;
  // A message of the browser's shows that a person is there.
  virtual void person_acted() = 0;
  // The thread has begun to work on an action, or waits for the browser again.
  virtual void action_began() = 0;
  virtual void action_ended() = 0;
  virtual void progress(std::string text, std::uint64_t done, std::uint64_t total) = 0;
  virtual void language_is(std::string language) = 0;
};

}  // namespace zrl::web
