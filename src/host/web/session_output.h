#pragma once

#include <cstdint>
#include <string>

namespace zrl::web {

// Where a session's thread sends what concerns the browser. None of the calls waits.
class SessionOutput {
 public:
  virtual ~SessionOutput() = default;

  // Dropped if the browser's connection is another one by now.
  virtual void send(std::uint64_t connection, std::string message) = 0;
  // The browser broke the rules too often.
  virtual void violated(std::uint64_t connection) = 0;
  // The thread is working from here on, and waits again for the browser.
  virtual void action_began() = 0;
  virtual void action_ended() = 0;
  virtual void progress(std::string text, std::uint64_t done, std::uint64_t total) = 0;
  virtual void language_is(std::string language) = 0;
};

}  // namespace zrl::web
