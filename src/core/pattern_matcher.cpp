#include "core/pattern_matcher.h"

#include "core/console.h"
#include "core/contracts/regexp.h"
#include "core/text/error.h"
#include "core/text/list_entry.h"

namespace zrl {

namespace {

constexpr int too_complex = 28;

}  // namespace

std::string PatternMatcher::regex_match(std::string_view entry, std::string_view text) {
  std::string result;
  if (!is_regex_entry(entry)) return result;
  console_.attempt(ActivityRecord::Kind::component, "regex_match " + std::string(entry), Console::Step::read,
                   [&] {
                     if (!regexp_) regexp_ = console_.components().create<RegExp>();
                     regexp_->set_pattern(regex_of(entry), {.ignore_case = true});
                     RegExpMatch match;
                     if (regexp_->find(text, 0, match)) {
                       result = text.substr(match.whole.offset, match.whole.length);
                     } else if (regexp_->limit_reached()) {
                       throw Error(too_complex, "The search took too long and was given up");
                     }
                   });
  return result;
}

}  // namespace zrl
