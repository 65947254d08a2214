#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "core/contracts/regexp.h"

namespace zrl {

struct RegExpLimits {
  // How long a search may take before it ends as "no match". It may overrun by a fraction.
  std::chrono::milliseconds search{600};
};

// Makes regular expressions on PCRE2. All that a factory makes share its compiled patterns; it
// keeps those that were used last. The factory and what it makes belong to one thread.
//
// A pattern has at most 65,536 characters, a quantifier counts to 65,535 at most; what is too large
// once it is compiled is malformed.
std::function<std::shared_ptr<RegExp>()> make_regexp_factory(RegExpLimits limits = {});

}  // namespace zrl
