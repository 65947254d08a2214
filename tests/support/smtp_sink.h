#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace zrl::test {

// A mail server on loopback that takes every mail and keeps it, in a thread of its own, one connection
// after the other. It can be told to refuse, to be slow, or to fall silent.
class SmtpSink {
 public:
  struct Mail {
    std::string sender;  // of the envelope, without angle brackets
    std::vector<std::string> recipients;
    std::string data;  // as it was written, dots taken off
    bool encrypted = false;
  };

  struct Behaviour {
    // What is said in place of the usual reply, by the beginning of the command: "MAIL",
    // "RCPT TO:<bob@". The greeting is the reply to "connect", the last one to ".". An empty reply
    // hangs up; `silence` says nothing more.
    std::map<std::string, std::string> replies;
    std::chrono::milliseconds delay{0};  // before each reply
    bool offers_tls = false;             // with a certificate that nobody trusts
    std::uint16_t port = 0;              // any that is free
    std::function<void(const Mail&)> on_mail;
  };
  static constexpr std::string_view silence = "silence";

  explicit SmtpSink(Behaviour behaviour);
  SmtpSink() : SmtpSink(Behaviour{}) {}
  SmtpSink(const SmtpSink&) = delete;
  SmtpSink& operator=(const SmtpSink&) = delete;
  ~SmtpSink();

  std::uint16_t port() const { return port_; }
  std::vector<Mail> mails() const;
  // What clients said, the mails left out.
  std::vector<std::string> commands() const;

 private:
  class Stream;

  void serve();
  void converse(int handle);
  // False if the conversation is over.
  bool take_command(Stream& stream, const std::string& line);
  bool take_mail(Stream& stream);
  bool reply(Stream& stream, std::string_view to, std::string_view usual);
  // False if the sink ends meanwhile.
  bool pause(std::chrono::milliseconds time);

  Behaviour behaviour_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  Mail current_;

  mutable std::mutex mutex_;
  std::condition_variable ending_changed_;
  bool ending_ = false;
  int connection_ = -1;
  std::vector<Mail> mails_;
  std::vector<std::string> commands_;

  std::thread thread_;
};

}  // namespace zrl::test
