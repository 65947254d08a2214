#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <ldap.h>

#include "components/directory/directory.h"
#include "components/directory/server_address.h"
#include "components/directory/socket_watch.h"

namespace zrl::directory {

// One entry of an answer. It and the views that it yields are valid during the visit only.
class DirectoryEntry {
 public:
  DirectoryEntry(LDAP* ldap, LDAPMessage* message) : ldap_(ldap), message_(message) {}

  // Calls `take` for each value of the attribute, whatever options its name has ("mail;lang-de"). Values are
  // any bytes. The name is compared without regard to case.
  void each_value(std::string_view attribute, const std::function<void(std::string_view)>& take) const;
  std::string first_value(std::string_view attribute) const;

 private:
  LDAP* ldap_;
  LDAPMessage* message_;
};

// A connection to a directory server with an anonymous bind (RFC 4513). Every failure is a zrl::Error with
// the library's result code and text. The console's events are served while a call waits; what they raise is
// passed on, and so is what a visitor raises.
class DirectoryConnection {
 public:
  // The console must outlive it.
  DirectoryConnection(ConsoleServices& console, const ServerAddress& server, const Options& options);
  DirectoryConnection(const DirectoryConnection&) = delete;
  DirectoryConnection& operator=(const DirectoryConnection&) = delete;
  ~DirectoryConnection() { watch_.close(); }

  using Visit = std::function<void(const DirectoryEntry&)>;

  // Visits the root entry, in which the server describes itself (RFC 4512, section 5.1).
  void read_root(const std::vector<const char*>& attributes, const Visit& visit);

  // Visits every entry below `base` that matches the filter (RFC 4515), by the paged control (RFC 2696) if
  // the server supports it.
  void search(const std::string& base, const char* filter, const std::vector<const char*>& attributes,
              const Visit& visit);

 private:
  struct Release {
    void operator()(LDAP* ldap) const { ldap_unbind_ext(ldap, nullptr, nullptr); }
    void operator()(LDAPMessage* message) const { ldap_msgfree(message); }
    void operator()(LDAPControl* control) const { ldap_control_free(control); }
    void operator()(LDAPControl** controls) const { ldap_controls_free(controls); }
  };
  using Message = std::unique_ptr<LDAPMessage, Release>;
  using Control = std::unique_ptr<LDAPControl, Release>;
  using Clock = SocketWatch::Clock;

  struct Question {
    const char* base;
    int scope;
    const char* filter;
    const std::vector<const char*>& attributes;
  };
  struct Answer {
    int code;
    std::string text;  // the server's message
    Message message;
  };

  void set(int option, const void* value) const;
  void sign_in();
  Answer ask(const Question& question, LDAPControl* page, const Visit& visit);
  Message next(int id);
  Answer result_of(Message message) const;
  Control page_control(const std::string& cookie) const;
  std::string next_cookie(const Answer& answer) const;
  void begin_waiting();
  std::string description_of(int code) const;
  [[noreturn]] void fail(int code, const std::string& text = {}) const;

  Options options_;
  std::string url_;
  bool is_encrypted_;
  bool is_signed_in_ = false;
  Clock::time_point end_;
  SocketWatch watch_;
  std::unique_ptr<LDAP, Release> ldap_;
};

}  // namespace zrl::directory
