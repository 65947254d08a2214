#pragma once

#include <cstddef>
#include <memory>

#include "core/contracts/block_lists.h"
#include "core/contracts/check_plugin.h"
#include "core/contracts/console_services.h"

// The checks that ask DNS-based lists (RFC 5782), at the servers of the console's own look-up of names and
// within its time-out. Zones come from the console's database. What a check left out, or what did not
// answer, goes to the console's record of failures, and why: a few entries a check at most, but for one a
// zone.
namespace zrl::block_lists {

// A check asks at most so many zones; those of the rows beyond are reported.
inline constexpr std::size_t most_zones = 256;
// A check of a text asks for at most so many names in it, and for so many that names times zones
// stay below the second number; URIs go before other host names.
inline constexpr std::size_t most_names = 256;
inline constexpr std::size_t most_lookups = 1024;

std::shared_ptr<BlockLists> make(ConsoleServices& console);
// checks::surbl: the text is one that was decoded from its transfer encoding, plain or HTML.
std::shared_ptr<CheckPlugin> make_uri_check(ConsoleServices& console);

}  // namespace zrl::block_lists
