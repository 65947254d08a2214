#include "components/service/systemctl_services.h"

#include "core/text/text.h"

namespace zrl::service {

namespace {

void take_property(std::string_view line, Unit& unit) {
  const std::size_t sign = line.find('=');
  if (sign == std::string_view::npos) return;
  const std::string_view name = line.substr(0, sign);
  const std::string_view value = line.substr(sign + 1);
  if (name == "Id") unit.name = value;
  if (name == "LoadState") unit.load = value;
  if (name == "ActiveState") unit.active = value;
  if (name == "SubState") unit.sub = value;
  if (name == "StateChangeTimestamp" && value.starts_with('@')) {
    unit.since = to_number(value.substr(1)).value_or(0);
  }
  if (name == "Job") unit.has_job = to_number(value).value_or(0) != 0;
}

// The first existing unit in the output of "systemctl show", which separates units by an empty line.
Unit first_unit(std::string_view text) {
  Unit unit;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    const std::string_view line = trim(text.substr(0, end + 1));
    text.remove_prefix(end + 1);
    if (!line.empty()) {
      take_property(line, unit);
    } else if (unit.exists()) {
      break;
    } else {
      unit = {};
    }
  }
  return unit;
}

}  // namespace

// The pattern finds loaded units only; others are looked for under the service's name as given.
Unit SystemctlServices::unit_of(std::string_view service) const {
  if (!can_be_unit(service)) return {};
  return first_unit(run(
      {"show", "--timestamp=unix", "--property=Id,LoadState,ActiveState,SubState,Job,StateChangeTimestamp",
       "--", unit_pattern(service), lower(service) + ".service", std::string(service) + ".service"}));
}

void SystemctlServices::order(const char* verb, std::string_view service) const {
  const Unit unit = unit_of(service);
  if (!unit.exists()) throw unknown_service(service);
  run({"--no-block", "--no-ask-password", verb, "--", unit.name});
}

std::string SystemctlServices::run(std::vector<std::string> words) const {
  words.insert(words.begin(), "--no-pager");
  ProgramResult result = run_({"systemctl", std::move(words), {}}, time_limit_);
  if (result.exit_status != 0) throw Error(result.exit_status, excerpt(result.text));
  return std::move(result.text);
}

}  // namespace zrl::service
