#include "host/composition.h"

#include "components/directory/directory_components.h"
#include "components/downloader/downloader_components.h"
#include "components/locale/catalogue_translator.h"
#include "components/sqlite/sqlite_components.h"
#include "pages/lists/remote_update.h"

namespace zrl {

namespace {

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

}  // namespace

void register_components(Console& console) {
  ComponentRegistry& components = console.components();
  components.add<Translator>(make_translator_factory());

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
}

}  // namespace zrl
