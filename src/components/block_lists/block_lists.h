#pragma once

#include <cstddef>
#include <memory>

#include "core/contracts/block_lists.h"
#include "core/contracts/check_plugin.h"
#include "core/contracts/console_services.h"

// The checks that ask DNS-based lists (RFC 5782). They ask the servers of the console's own name look-up,
// within its time-out. Zones are read from the console's database when a test begins, through its
// Database component. What a check leaves out, and every zone that does not answer or answers nonsense, is
// recorded by ConsoleServices::record_failure() with the reason: one entry a zone and a few more a check.
//
// The objects belong to the console's thread and must not outlive the console.
namespace zrl::block_lists {

// How many zones a check asks at most. Further rows are recorded and otherwise ignored.
inline constexpr std::size_t most_zones = 256;
// How many names of a text the URI check looks up at most, and how many queries (names times zones) it
// sends at most. Hosts of URIs are looked up before other host names; what exceeds a limit is recorded.
inline constexpr std::size_t most_names = 256;
inline constexpr std::size_t most_lookups = 1024;

// The test of clients and senders against the tables `wblserver` and `rblserver`.
std::shared_ptr<BlockLists> make(ConsoleServices& console);

// The check `checks::surbl`: looks the hosts in a text up under the zones of the table `surblserver`. The
// text is plain or HTML, its transfer encoding already decoded; it may be any bytes, and its position and
// command are ignored. The answer lists the names found with their zones, in about 4,000 bytes at most.
// info() is 0 while no DNS server is known, initmodule() false without zones. Raises what the contract of
// CheckPlugin says.
std::shared_ptr<CheckPlugin> make_uri_check(ConsoleServices& console);

}  // namespace zrl::block_lists
