#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "components/dns/dns_surroundings.h"
#include "core/contracts/block_lists.h"
#include "core/contracts/check_plugin.h"
#include "core/contracts/statement.h"
#include "core/text/string_list.h"

// The checks that ask DNS-based lists (RFC 5782).
namespace zrl {

struct BlockListSettings {
  DnsSurroundings dns;
  // The entries of a table of zones, in the order of its rows. Raises zrl::Error if they cannot be read.
  std::function<StringList(Literal table)> entries;
  // Takes down what a check left out, or what did not answer, and why. UTF-8 of a bounded length; a
  // few calls a check at most, but for one a zone.
  std::function<void(std::string_view what, std::string_view problem)> report;
};

// A check asks at most so many zones; those of the rows beyond are reported.
inline constexpr std::size_t most_zones = 256;
// A check of a text asks for at most so many names in it, and for so many that names times zones
// stay below the second number; URIs go before other host names.
inline constexpr std::size_t most_names = 256;
inline constexpr std::size_t most_lookups = 1024;

std::shared_ptr<BlockLists> make_block_lists(BlockListSettings settings);
// checks::surbl: the text is one that was decoded from its transfer encoding, plain or HTML.
std::shared_ptr<CheckPlugin> make_uri_check(BlockListSettings settings);

}  // namespace zrl
