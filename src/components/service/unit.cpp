#include "components/service/unit.h"

#include <algorithm>

#include "core/text/ascii.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::service {

namespace {

constexpr std::string_view ending = ".service";
constexpr std::size_t longest_name = 200;
constexpr std::size_t longest_excerpt = 300;

bool can_stand_in_name(char c) {
  return is_letter_or_digit(c) || std::string_view(":-_.@").find(c) != std::string_view::npos;
}

}  // namespace

ServiceState state_of(const Unit& unit) {
  if (!unit.exists()) return {};
  const bool changes = unit.has_job || unit.active == "activating" || unit.active == "deactivating";
  return {unit.load == "loaded" ? unit.active : unit.load, unit.sub, changes ? 1U : 0U, unit.since};
}

bool can_be_unit(std::string_view service) {
  return !service.empty() && service.size() <= longest_name &&
         std::ranges::all_of(service, can_stand_in_name);
}

std::string unit_pattern(std::string_view service) {
  std::string pattern;
  for (const char c : service) {
    const std::string_view one(&c, 1);
    pattern += is_letter(c) ? "[" + upper(one) + lower(one) + "]" : std::string(one);
  }
  return pattern.append(ending);
}

bool is_unit_of(std::string_view service, std::string_view unit_name) {
  return unit_name.ends_with(ending) &&
         equals_ignoring_case(service, unit_name.substr(0, unit_name.size() - ending.size()));
}

Error unknown_service(std::string_view service) {
  return {ServiceManager::no_such_service, "no such service: " + std::string(service)};
}

std::string excerpt(std::string_view text) {
  const std::string_view said = trim(text);
  return printable(trim(cut_between_characters(said.substr(0, said.find('\n')), longest_excerpt)));
}

}  // namespace zrl::service
