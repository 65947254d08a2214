#include "host/composition.h"

#include "components/html/html_text_converter.h"
#include "components/locale/catalogue_translator.h"
#include "components/pcre2/pcre2_regexp.h"
#include "components/sqlite/sqlite_components.h"

namespace zrl {

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
}

}  // namespace zrl
