#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "core/contracts/translator.h"

namespace zrl {

// Makes translators on the catalogues that are built into the program (one a file in locale/).
// Instances are cheap: the catalogues are read when first needed, and instances share them. The
// factory belongs to one thread.
std::function<std::shared_ptr<Translator>()> make_translator_factory();

// The catalogue text of a language as it was built in, or empty.
std::string_view built_in_catalogue(std::string_view language);

}  // namespace zrl
