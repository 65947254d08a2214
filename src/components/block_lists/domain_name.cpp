#include "components/block_lists/domain_name.h"

#include <algorithm>
#include <cstddef>

#include <libpsl.h>

#include "components/dns/ip_address.h"
#include "core/text/domain_names.h"
#include "core/text/text.h"

namespace zrl::block_lists {

namespace {

// More labels than the domain of any registry has.
constexpr int most_labels = 8;

// Registries that the list has in its private section, lacks, or divides further. Sorted.
constexpr std::string_view more_registries[] = {"ac.bw",  "ac.ru",  "com.ru", "edu.ru", "gov.bw",
                                                "gov.mt", "int.ru", "msk.ru", "net.bw", "net.ru",
                                                "org.ru", "pp.ru",  "sch.uk", "spb.ru"};

// The offset of the last `count` labels of a name; 0 if it has no more labels than that.
std::size_t begin_of_labels(std::string_view name, int count) {
  std::size_t end = name.size();
  for (; count > 0; --count) {
    end = name.substr(0, end).rfind('.');
    if (end == name.npos) return 0;
  }
  return end + 1;
}

}  // namespace

std::string domain_name(std::string_view text) {
  std::string_view name = trim(text);
  if (name.ends_with('.')) name.remove_suffix(1);
  return is_domain_name(name) ? lower(name) : std::string();
}

std::string_view registrable_domain(std::string_view host) {
  if (std::ranges::binary_search(more_registries, host.substr(begin_of_labels(host, 2)))) {
    const std::size_t begin = begin_of_labels(host, 3);
    return begin == begin_of_labels(host, 2) ? std::string_view() : host.substr(begin);
  }
  const std::string name(host);
  std::size_t before = begin_of_labels(host, most_labels);
  for (std::size_t begin = before;; ++begin) {
    if (psl_is_public_suffix2(psl_builtin(), name.c_str() + begin, PSL_TYPE_ICANN) != 0) {
      return begin == 0 ? std::string_view() : host.substr(before);
    }
    before = begin;
    begin = name.find('.', begin);
    if (begin == name.npos) return {};
  }
}

std::string reversed_address(std::string_view text) {
  const auto address = dns::IpAddress::parse(trim(text));
  if (!address) return {};
  const std::string name = address->reverse_name();
  return name.substr(0, name.rfind(address->family() == dns::IpAddress::Family::v4 ? ".in-addr" : ".ip6"));
}

}  // namespace zrl::block_lists
