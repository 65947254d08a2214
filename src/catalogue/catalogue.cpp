#include "catalogue/catalogue.h"

#include <algorithm>

#include "pages/lists/block_list_page.h"
#include "pages/lists/domain_page.h"
#include "pages/lists/exception_page.h"
#include "pages/lists/file_page.h"
#include "pages/lists/ip_page.h"
#include "pages/lists/keyword_page.h"
#include "pages/lists/local_page.h"
#include "pages/lists/local_user_page.h"
#include "pages/lists/mail_page.h"
#include "pages/lists/replacement_page.h"
#include "pages/lists/subnet_page.h"
#include "pages/lists/uri_list_page.h"
#include "pages/logs/avlog_page.h"
#include "pages/logs/iplog_page.h"
#include "pages/logs/keywordlog_page.h"
#include "pages/logs/messages_page.h"
#include "pages/logs/monitor_page.h"
#include "pages/logs/predatalog_page.h"
#include "pages/logs/stati_page.h"
#include "pages/settings/general_page.h"
#include "pages/settings/pop_config_page.h"
#include "pages/settings/spf_page.h"
#include "pages/settings/strings_page.h"
#include "pages/tools/keyword_tester_page.h"
#include "pages/tools/regex_tester_page.h"
#include "pages/traffic/lookup_page.h"
#include "pages/traffic/overview_page.h"
#include "scripting/script_engine_page.h"
#include "service/service_control_page.h"

namespace zrl {

std::span<const PageEntry> page_catalogue() {
  static constexpr PageEntry entries[] = {
      {"overview", "Traffic", "Overview", make_page<OverviewPage>},
      {"lookup", "Traffic", "Look up", make_page<LookupPage>},
      {"general", "Settings", "General", make_page<GeneralPage>},
      {"strings", "Settings", "Reply texts", make_page<StringsPage>},
      {"spf", "Settings", "SPF and Caller-ID", make_page<SpfPage>},
      {"pop_config", "Settings", "POP3 accounts", make_page<PopConfigPage>},
      {"domainbw", "Lists", "Domains", make_page<DomainPage>},
      {"ipbw", "Lists", "IP numbers", make_page<IpPage>},
      {"subnets", "Lists", "Subnets", make_page<SubnetPage>},
      {"localstuff", "Lists", "Local domains and IP numbers", make_page<LocalPage>},
      {"localuser", "Lists", "Local users", make_page<LocalUserPage>},
      {"wbuser", "Lists", "E-mail addresses", make_page<MailPage>},
      {"keywords", "Lists", "Keywords", make_page<KeywordPage>},
      {"exceptions", "Lists", "Exceptions", make_page<ExceptionPage>},
      {"rblists", "Lists", "DNS block lists", make_page<BlockListPage>},
      {"surbl", "Lists", "URI block lists", make_page<UriListPage>},
      {"wordreplace", "Lists", "Word replacement", make_page<ReplacementPage>},
      {"filescanner", "Lists", "Attachments", make_page<FilePage>},
      {"messages", "Logs", "Messages", make_page<MessagesPage>},
      {"iplog", "Logs", "IP log", make_page<IplogPage>},
      {"predatalog", "Logs", "Header log", make_page<PredatalogPage>},
      {"keywordlog", "Logs", "Keyword log", make_page<KeywordlogPage>},
      {"avlog", "Logs", "Attachment log", make_page<AvlogPage>},
      {"monitor", "Logs", "Mail archive", make_page<MonitorPage>},
      {"stati", "Logs", "Statistics", make_page<StatiPage>},
      {"ScriptEngine", "Scripts", "Script engine", make_page<ScriptEnginePage>},
      {"keywordtester", "Test tools", "Keyword tester", make_page<KeywordTesterPage>},
      {"regEx", "Test tools", "Regular expression tester", make_page<RegexTesterPage>},
      {"ServiceControl", "Service", "Service control", make_page<ServiceControlPage>},
  };
  return entries;
}

const PageEntry* find_page(std::span<const PageEntry> catalogue, std::string_view name) {
  const auto found = std::ranges::find(catalogue, name, &PageEntry::name);
  return found == catalogue.end() ? nullptr : &*found;
}

}  // namespace zrl
