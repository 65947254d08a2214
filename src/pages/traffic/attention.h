#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/service_manager.h"
#include "core/database_client.h"

namespace zrl {

enum class Severity : std::uint8_t { bad, warning, unknown };

// "bad", "warning", "unknown": for machines.
std::string_view name_of(Severity severity);

// Something that an administrator should look at.
struct Finding {
  Severity severity;
  std::string text;       // in the user's language
  std::string_view page;  // where it can be mended; a literal

  bool operator==(const Finding&) const = default;
};

// A step of setting the console up.
struct FirstStep {
  std::string text;  // in the user's language
  std::string_view page;
  bool done;

  bool operator==(const FirstStep&) const = default;
};

// Asks whether all is well. Each question is independent of the others: what cannot be read is a finding of
// its own. Everything is read; nothing is written, and nothing is recorded but reads that failed.
class Attention {
 public:
  // Both must outlive the object.
  Attention(DatabaseClient& client, Console& console) : client_(client), console_(console) {}

  // Asks everything anew, but for a service manager that did not answer: it is left alone until the page is
  // shown again, because waiting for it would hold up every refresh.
  void look();
  void show_again() { asks_service_ = true; }

  const std::vector<Finding>& findings() const { return findings_; }
  const std::vector<FirstStep>& first_steps() const { return first_steps_; }
  // Nothing if the service manager did not answer; empty texts if there is no such service.
  const std::optional<ServiceState>& service() const { return service_; }
  // What the logs that could not be read are called goes into the findings, too.
  void add_unread(const std::vector<std::string_view>& logs);

 private:
  void look_at_service();
  void look_at_flags();
  void look_at_update();
  void look_at_space();
  void look_at_archive();
  void look_at_lists();
  void look_at_first_steps();

  void find(Severity severity, std::string text, std::string_view page);
  void find_unreadable(std::string_view what, std::string_view page);
  std::string translate(std::string_view text);
  // Whether the table has rows.
  std::optional<bool> has_rows(Literal table);
  std::optional<std::int64_t> number_of(const Statement& select);
  // When the flag was first seen to be set, or became so.
  std::int64_t raised_since(const std::string& path);
  std::int64_t now() const;

  DatabaseClient& client_;
  Console& console_;
  std::vector<Finding> findings_;
  std::vector<FirstStep> first_steps_;
  std::optional<ServiceState> service_;
  bool asks_service_ = true;
  std::map<std::string, std::int64_t, std::less<>> seen_flags_;
};

}  // namespace zrl
