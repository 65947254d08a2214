#include "host/composition.h"

#include "components/block_lists/block_lists.h"
#include "components/checks/checks.h"
#include "components/directory/directory.h"
#include "components/dns/dns.h"
#include "components/downloader/downloader.h"
#include "components/html/html.h"
#include "components/locale/locale.h"
#include "components/logging/logging.h"
#include "components/mail/mail.h"
#include "components/pcre2/pcre2.h"
#include "components/service/service.h"
#include "components/sqlite/sqlite.h"
#include "host/program_output.h"
#include "net/name_lookup.h"
#include "pages/lists/remote_update.h"

namespace zrl {

void register_components(Console& console) {
  ComponentRegistry& components = console.components();

  components.add<Database>([&console] { return sqlite::make(console); });
  components.add<EntrySearch>([&console] { return sqlite::make_entry_search(console); });
  // One for all: it has no state but the file, which every operation would open anew.
  components.add<Registry>([registry = sqlite::make_registry(console)] { return registry; });
  components.add<Translator>([&console] { return locale::make(console); });
  components.add<RegExp>([&console] { return pcre2::make(console); });
  components.add<HtmlConverter>([&console] { return html::make(console); });
  components.add<Logger>([&console] { return logging::make(console); });

  components.add<NameLookup>([&console] { return make_name_lookup(console); });
  components.add<DnsClient>([&console] { return dns::make(console); });
  components.add<BlockLists>([&console] { return block_lists::make(console); });

  components.add<PluginHost>([&console] { return checks::make_plugin_host(console); });
  components.add<CheckPlugin>(checks::body_stream, [&console] { return checks::make_body_check(console); });
  components.add<CheckPlugin>(checks::subject, [&console] { return checks::make_subject_check(console); });
  components.add<CheckPlugin>(checks::surbl, [&console] { return block_lists::make_uri_check(console); });

  components.add<DirectoryLookups>([&console] { return directory::make(console); });
  components.add<DirectoryUsers>([&console] { return directory::make_users(console); });
  components.add<Downloader>([&console] { return downloader::make(console, published_list_files()); });
  components.add<MailMessage>([&console] { return mail::make(console); });
  components.add<ServiceManager>([&console] { return service::make(console, program_output); });
}

}  // namespace zrl
