#include "pages/catalogue.h"

#include <algorithm>

#include "pages/lists/domain_page.h"
#include "pages/lists/exception_page.h"
#include "pages/lists/file_page.h"
#include "pages/lists/keyword_page.h"
#include "pages/lists/mail_page.h"
#include "pages/lists/replacement_page.h"
#include "pages/logs/iplog_page.h"
#include "pages/logs/predatalog_page.h"
#include "pages/logs/stati_page.h"
#include "pages/settings/general_page.h"

namespace zrl {

std::span<const PageEntry> page_catalogue() {
  static constexpr PageEntry entries[] = {
      {"general", "Settings", "General", make_page<GeneralPage>},
      {"domainbw", "Lists", "Domains", make_page<DomainPage>},
      {"wbuser", "Lists", "E-mail addresses", make_page<MailPage>},
      {"keywords", "Lists", "Keywords", make_page<KeywordPage>},
      {"exceptions", "Lists", "Exceptions", make_page<ExceptionPage>},
      {"wordreplace", "Lists", "Word replacement", make_page<ReplacementPage>},
      {"filescanner", "Lists", "Attachments", make_page<FilePage>},
      {"iplog", "Logs", "IP log", make_page<IplogPage>},
      {"predatalog", "Logs", "Header log", make_page<PredatalogPage>},
      {"stati", "Logs", "Statistics", make_page<StatiPage>},
  };
  return entries;
}

const PageEntry* find_page(std::span<const PageEntry> catalogue, std::string_view name) {
  const auto found = std::ranges::find(catalogue, name, &PageEntry::name);
  return found == catalogue.end() ? nullptr : &*found;
}

}  // namespace zrl
