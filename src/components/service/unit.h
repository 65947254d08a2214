#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/contracts/service_manager.h"
#include "core/text/error.h"

namespace zrl::service {

// A unit as systemd describes it.
struct Unit {
  std::string name;    // "mirvan.service"
  std::string path;    // of its object on the bus; empty if it was not found there
  std::string load;    // "loaded", "not-found", "masked", "bad-setting"
  std::string active;  // "active", "inactive", "failed", "activating", "deactivating"
  std::string sub;     // "running", "dead"
  bool has_job = false;
  std::int64_t since = 0;  // of its state, in seconds since 1970; 0 if that is not known

  bool exists() const { return !name.empty() && load != "not-found"; }
};

ServiceState state_of(const Unit& unit);

// Whether a unit can have this name before ".service": at most 200 ASCII letters, digits and ":-_.@".
bool can_be_unit(std::string_view service);
// The wildcard pattern of the service's unit, its letters in any case: "[Aa][Bb]1.service".
std::string unit_pattern(std::string_view service);
bool is_unit_of(std::string_view service, std::string_view unit_name);

Error unknown_service(std::string_view service);

// The first line of a message of the manager, in the form for an error's text.
std::string excerpt(std::string_view text);

}  // namespace zrl::service
