#pragma once

#include <string>
#include <string_view>

namespace zrl {

// What a check knows about a message before its text: what the SMTP client has disclosed so far. Fields that
// are not known are empty. The sender chose these texts: they may hold any bytes, at any length.
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

  // Begins a message: forgets the last result and reads the lists. Raises zrl::Error if they cannot be read;
  // false if the check is not to be run on this message. The context is copied as far as it is needed.
  virtual bool initmodule(const MessageContext& context) = 0;

  // Checks `text`, any bytes, at a position of the SMTP conversation ("BODYSTREAM", "BODY", "HEADER"); the
  // command is "SEND". May take as long as DNS look-ups do; the event loop is served meanwhile, so `text`
  // must not belong to a page that may be left. Raises zrl::Error on failure.
  virtual void send(std::string_view position, std::string_view command, std::string_view text) = 0;

  // What the last check found, as text: UTF-8 of a bounded length, empty if it found nothing.
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

  // Creates the check `check`, a program id, begins a message with an empty context, runs the check on `text`
  // and returns its answer: empty if it found nothing or is not usable. Raises zrl::Error if there is no such
  // check, or if it fails.
  virtual std::string call_module(std::string_view check, std::string_view position, std::string_view command,
                                  std::string_view text) = 0;
};

}  // namespace zrl
