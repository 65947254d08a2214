#include "host/composition.h"

#include <arpa/inet.h>

#include "components/block_lists/block_list_components.h"
#include "components/checks/check_components.h"
#include "components/directory/directory_components.h"
#include "components/dns/cares_client.h"
#include "components/downloader/downloader_components.h"
#include "components/html/html_text_converter.h"
#include "components/locale/catalogue_translator.h"
#include "components/logging/file_logger.h"
#include "components/mail/mail_components.h"
#include "components/pcre2/pcre2_regexp.h"
#include "components/service/service_components.h"
#include "components/sqlite/sqlite_components.h"
#include "core/text/error.h"
#include "host/program_output.h"
#include "net/name_lookup.h"
#include "pages/lists/remote_update.h"

namespace zrl {

namespace {

DnsSurroundings dns_surroundings(Console& console) {
  return {[&console] { return console.names().servers(); }, [&console] { return console.names().time_out(); },
          [&console](std::chrono::milliseconds time) { console.wait(time); }};
}

std::string data_provider(Console& console) {
  return console.settings().regread(console.settings().data_provider_path());
}

std::string directory_server(Console& console) {
  const auto database = console.components().create<Database>();
  ConnectionHandle connection = database->open_database(data_provider(console));
  return database->read_string("ldapserver", connection);
}

DirectorySettings directory_settings(Console& console) {
  DirectorySettings settings;
  settings.serve = [&console] { console.host().process_events(); };
  settings.report = [&console](const Progress& progress) { console.host().show_progress(progress); };
  return settings;
}

CheckSurroundings check_surroundings(Console& console) {
  return {
      [&console] { return console.components().create<Database>(); },
      [&console] { return data_provider(console); },
      [&console](std::string_view entry, std::string_view text) { return console.regex_match(entry, text); }};
}

DownloaderSettings downloader_settings(Console& console) {
  DownloaderSettings settings;
  settings.folder = console.folder();
  settings.files = published_list_files();
  settings.address = [&console] {
    return console.settings().regread(console.settings().path_of("updateurl"));
  };
  settings.database = [&console] { return console.components().create<Database>(); };
  settings.provider = [&console] { return data_provider(console); };
  settings.serve = [&console] { console.host().process_events(); };
  settings.report = [&console](const Progress& progress) { console.host().show_progress(progress); };
  return settings;
}

BlockListSettings block_list_settings(Console& console) {
  BlockListSettings settings;
  settings.dns = dns_surroundings(console);
  settings.entries = [&console](Literal table) {
    const auto database = console.components().create<Database>();
    ConnectionHandle connection = database->open_database(data_provider(console));
    StringList entries = database->get_db_array(connection, table, "entry", {});
    entries.pop_back();
    return entries;
  };
  settings.report = [&console](std::string_view what, std::string_view problem) {
    console.attempt(ActivityRecord::Kind::component, "block list " + std::string(what), Console::Step::read,
                    [&] { throw Error(error_number::invalid_call, std::string(problem)); });
  };
  return settings;
}

// The system's look-up knows nothing of the servers that ZRL_RESOLV_CONF names; the console's does.
std::vector<std::string> addresses_where_servers_are_named(Console& console, const std::string& host) {
  in6_addr bytes;
  const bool is_address = host.starts_with('[') || ::inet_pton(AF_INET, host.c_str(), &bytes) == 1 ||
                          ::inet_pton(AF_INET6, host.c_str(), &bytes) == 1;
  if (is_address || !console.names().asks_only_servers()) return {};
  return {console.names().host_address(host)};
}

}  // namespace

void register_components(Console& console) {
  ComponentRegistry& components = console.components();
  components.add<Translator>(make_translator_factory());
  components.add<HtmlConverter>(make_html_converter_factory());
  components.add<RegExp>(make_regexp_factory());
  components.add<Logger>(make_logger_factory());

  const auto registry = make_registry_store(console.folder());
  components.add<Registry>([registry] { return registry->registry(); });

  components.add<Database>([&console] {
    return make_sqlite_database(
        console.folder(), [&console] { return data_provider(console); },
        [&console](const Progress& progress) { console.host().show_progress(progress); }, {},
        [&console](std::string_view server) { return directory_users(server, directory_settings(console)); });
  });
  components.add<Downloader>([&console] { return make_downloader(downloader_settings(console)); });
  components.add<DirectoryLookups>([&console] {
    return make_directory_lookups([&console] { return directory_server(console); },
                                  directory_settings(console));
  });

  components.add<NameLookup>([&console] { return make_name_lookup(console); });
  components.add<DnsClient>([&console] { return make_dns_client(dns_surroundings(console)); });
  components.add<BlockLists>([&console] { return make_block_lists(block_list_settings(console)); });
  components.add<CheckPlugin>(checks::surbl,
                              [&console] { return make_uri_check(block_list_settings(console)); });

  components.add<ServiceManager>([] { return make_service_manager({.run = program_output}); });
  components.add<PluginHost>(make_plugin_transport_factory(components));
  components.add<CheckPlugin>(checks::body_stream, make_body_check_factory(check_surroundings(console)));
  components.add<CheckPlugin>(checks::subject, make_subject_check_factory(check_surroundings(console)));

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
