#include "components/checks/subject_field.h"

#include <algorithm>

#include "core/text/text.h"

namespace zrl::checks {

namespace {

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

std::string subject_of(std::string_view header) {
  while (!header.empty()) {
    const std::string_view line = take_line(header);
    if (line.empty()) break;
    const std::size_t colon = line.find(':');
    if (colon == line.npos || is_blank(line.front())) continue;
    if (!equals_ignoring_case(trim(line.substr(0, colon)), "subject")) continue;
    std::string subject(line.substr(colon + 1));
    while (!header.empty() && is_blank(header.front())) subject += take_line(header);
    return std::string(trim(subject));
  }
  return {};
}

std::size_t longest_run_of_blanks(std::string_view text) {
  std::size_t longest = 0;
  std::size_t run = 0;
  for (const char c : text) {
    run = is_blank(c) ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

}  // namespace zrl::checks
