#include "host/composition.h"

#include "components/dns/cares_client.h"
#include "components/html/html_text_converter.h"
#include "components/locale/catalogue_translator.h"
#include "components/pcre2/pcre2_regexp.h"
#include "components/sqlite/sqlite_components.h"

namespace zrl {

namespace {

// The resolver, which looks for its servers and time-out again as long as it knows no server.
Resolver& ready(Resolver& resolver) {
  if (resolver.dns_servers().empty()) resolver.discover_dns_servers();
  return resolver;
}

std::vector<std::string> server_texts(Resolver& resolver) {
  std::vector<std::string> texts;
  for (const DnsServer& server : ready(resolver).dns_servers()) texts.push_back(server.text());
  return texts;
}

}  // namespace

void register_components(Console& console) {
  ComponentRegistry& components = console.components();
  components.add<Translator>(make_translator_factory());
  components.add<HtmlConverter>(make_html_converter_factory());
  components.add<RegExp>(make_regexp_factory());

  const auto registry = make_registry_store(console.folder());
  components.add<Registry>([registry] { return registry->registry(); });

  components.add<Database>([&console] {
    return make_sqlite_database(
        console.folder(),
        [&console] { return console.settings().regread(console.settings().data_provider_path()); },
        [&console](const Progress& progress) { console.host().show_progress(progress); });
  });

  components.add<DnsClient>([&resolver = console.resolver(), &host = console.host()] {
    return make_dns_client({[&resolver] { return server_texts(resolver); },
                            [&resolver] { return ready(resolver).dns_timeout(); },
                            [&host](std::chrono::milliseconds time) { host.wait(time); }});
  });
}

}  // namespace zrl
