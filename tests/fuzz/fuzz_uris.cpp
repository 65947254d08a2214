// Texts with URIs: whatever they hold, what is found are domains and addresses that can be asked for, no
// more than wanted and each once; and the URI of each leads to it alone.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>

#include "components/block_lists/domain_name.h"
#include "components/block_lists/uri_finder.h"
#include "core/text/list_entry.h"

namespace {

using zrl::block_lists::domain_name;
using zrl::block_lists::find_names;
using zrl::block_lists::FoundNames;
using zrl::block_lists::registrable_domain;
using zrl::block_lists::reversed_address;

constexpr std::size_t most = 20;

void require(bool sound) {
  if (!sound) std::abort();
}

void check_name(const std::string& name) {
  require(domain_name(name) == name);
  require(zrl::is_ip_address(name) != reversed_address(name).empty());
  require(zrl::is_ip_address(name) || registrable_domain(name) == name);
  const FoundNames again = find_names("x http://u@www." + name + ":80/", most);
  const FoundNames address = find_names("http:\\\\" + name, most);
  require(zrl::is_ip_address(name) || again.names == std::vector<std::string>{name});
  require(address.names == std::vector<std::string>{name});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const FoundNames found = find_names(text, most);
  require(found.names.size() <= most);
  require(found.complete || found.names.size() == most);
  require(std::set<std::string>(found.names.begin(), found.names.end()).size() == found.names.size());
  for (const std::string& name : found.names) check_name(name);
  return 0;
}
