#include "host/composition.h"

#include "components/locale/catalogue_translator.h"

namespace zrl {

void register_components(Console& console) {
  console.components().add<Translator>(make_translator_factory());
}

}  // namespace zrl
