#pragma once

#include <memory>
#include <string_view>

#include "core/contracts/console_services.h"
#include "core/contracts/translator.h"

namespace zrl::locale {

// A translator on the catalogues that are built into the program (one a file in locale/). Instances
// are cheap: a catalogue is read when it is first needed, and all instances of the process share it.
std::shared_ptr<Translator> make(ConsoleServices& console);

// The catalogue text of a language as it was built in, or empty.
std::string_view built_in_catalogue(std::string_view language);

}  // namespace zrl::locale
