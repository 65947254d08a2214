#pragma once

#include <chrono>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/regexp.h"

namespace zrl::pcre2 {

struct Limits {
  // How long one search may take. It then ends as "no match", and RegExp::limit_reached() is true. A search
  // may overrun this by a fraction, because the clock is read between slices of the text.
  std::chrono::milliseconds search{600};
};

// A regular expression on the library PCRE2. It belongs to the thread that made it: all expressions of a
// thread share a cache of compiled patterns, which keeps the 256 used last (and 64 Ki units of pattern text).
// It does not use the console and may outlive it.
//
// A pattern has at most 65,536 characters, and a quantifier counts to 65,535 at most. A pattern beyond that,
// or one whose compiled form is too large, is malformed: set_pattern() raises zrl::Error.
std::shared_ptr<RegExp> make(ConsoleServices& console, Limits limits = {});
// The same for programs without a console, such as the command that runs scripts.
std::shared_ptr<RegExp> make_regexp(Limits limits = {});

}  // namespace zrl::pcre2
