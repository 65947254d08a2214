#include "host/composition.h"

#include <arpa/inet.h>

#include "components/locale/catalogue_translator.h"
#include "components/mail/mail_components.h"
#include "components/sqlite/sqlite_components.h"
#include "core/error.h"
#include "net/machine_sockets.h"

namespace zrl {

namespace {

// The system's look-up knows nothing of the servers that ZRL_RESOLV_CONF names; the console's does.
std::vector<std::string> addresses_where_servers_are_named(Console& console, const std::string& host) {
  in6_addr bytes;
  const bool is_address = host.starts_with('[') || ::inet_pton(AF_INET, host.c_str(), &bytes) == 1 ||
                          ::inet_pton(AF_INET6, host.c_str(), &bytes) == 1;
  if (is_address || !hosts_file_path().empty()) return {};
  MachineSockets sockets(console.resolver());
  std::string problem;
  const std::string address = host_address(sockets, host, problem);
  if (address.empty()) throw Error(sockets.last_error(), "no address was found for " + host);
  return {address};
}

}  // namespace

void register_components(Console& console) {
  ComponentRegistry& components = console.components();
  components.add<Translator>(make_translator_factory());

  const auto registry = make_registry_store(console.folder());
  components.add<Registry>([registry] { return registry->registry(); });

  components.add<Database>([&console] {
    return make_sqlite_database(
        console.folder(),
        [&console] { return console.settings().regread(console.settings().data_provider_path()); },
        [&console](const Progress& progress) { console.host().show_progress(progress); });
  });

  components.add<MailMessage>([&console] {
    return make_mail_message({
        .wait = [&console](std::chrono::milliseconds time) { console.host().wait(time); },
        .find_addresses =
            [&console](const std::string& host) { return addresses_where_servers_are_named(console, host); },
        .limits = {},
    });
  });
}

}  // namespace zrl
