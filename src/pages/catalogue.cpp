#include "pages/catalogue.h"

#include <algorithm>

#include "pages/lists/domain_page.h"
#include "pages/lists/ip_page.h"
#include "pages/lists/local_page.h"
#include "pages/lists/local_user_page.h"
#include "pages/lists/subnet_page.h"
#include "pages/settings/general_page.h"

namespace zrl {

std::span<const PageEntry> page_catalogue() {
  static constexpr PageEntry entries[] = {
      {"general", "Settings", "General", make_page<GeneralPage>},
      {"domainbw", "Lists", "Domains", make_page<DomainPage>},
      {"ipbw", "Lists", "IP numbers", make_page<IpPage>},
      {"subnets", "Lists", "Subnets", make_page<SubnetPage>},
      {"localstuff", "Lists", "Local domains and IP numbers", make_page<LocalPage>},
      {"localuser", "Lists", "Local users", make_page<LocalUserPage>},
  };
  return entries;
}

const PageEntry* find_page(std::span<const PageEntry> catalogue, std::string_view name) {
  const auto found = std::ranges::find(catalogue, name, &PageEntry::name);
  return found == catalogue.end() ? nullptr : &*found;
}

}  // namespace zrl
