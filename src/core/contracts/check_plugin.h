#pragma once

#include <string>
#include <string_view>

namespace zrl {

// What a check knows about the message before its text: what the SMTP client has shown of itself.
// Fields that are not known are empty. All of it is the sender's own text and may hold anything.
struct MessageContext {
  std::string client_address;  // of the SMTP client, as text
  std::string sender_command;  // "mail from: USER@DOMAIN"
};

// One of the filtering service's checks. A check is made for one message, or for one test.
class CheckPlugin {
 public:
  virtual ~CheckPlugin() = default;

  // Above 0 when the check can be used: what it needs is there.
  virtual int info() = 0;

  // Begins a message: forgets the last result and reads the lists. Raises zrl::Error if they cannot
  // be read; false if the check is not to be run.
  virtual bool initmodule(const MessageContext& context) = 0;

  // Checks `text` at a position of the SMTP conversation ("BODYSTREAM", "BODY", "HEADER"); the
  // command is "SEND". May take the time of DNS look-ups, the event loop served meanwhile. Raises
  // zrl::Error on failure.
  virtual void send(std::string_view position, std::string_view command, std::string_view text) = 0;

  // What the last check found, in words: UTF-8 of a bounded length, empty if it found nothing.
  virtual std::string send() const = 0;
};

// The program ids of the checks.
namespace checks {
inline constexpr std::string_view body_stream = "bodystream.checkebodystream";
inline constexpr std::string_view subject = "proxychecks.subject";
inline constexpr std::string_view surbl = "surbl.plugin";
}  // namespace checks

// Runs checks by their program id.
class PluginHost {
 public:
  static constexpr std::string_view program_id = "zrlhelper.transport";

  virtual ~PluginHost() = default;

  // Makes the check, begins a message that nothing is known of, runs it on `text` and returns its
  // answer: empty if it found nothing or is not usable. Raises zrl::Error if there is no such check,
  // or if it fails.
  virtual std::string call_module(std::string_view check, std::string_view position, std::string_view command,
                                  std::string_view text) = 0;
};

}  // namespace zrl
