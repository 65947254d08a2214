#pragma once

#include <chrono>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/regexp.h"

namespace zrl::pcre2 {

struct Limits {
  // How long a search may take before it ends as "no match". It may overrun by a fraction.
  std::chrono::milliseconds search{600};
};

// A regular expression on PCRE2. The expressions of a thread share their compiled patterns, of which
// those that were used last are kept. An expression belongs to the thread that made it.
//
// A pattern has at most 65,536 characters, a quantifier counts to 65,535 at most; what is too large
// once it is compiled is malformed.
std::shared_ptr<RegExp> make(ConsoleServices& console, Limits limits = {});
// The same for programs without a console.
std::shared_ptr<RegExp> make_regexp(Limits limits = {});

}  // namespace zrl::pcre2
