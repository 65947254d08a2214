#pragma once

#include <memory>
#include <string_view>

#include "core/contracts/console_services.h"
#include "core/contracts/translator.h"

namespace zrl::locale {

// A translator on the message catalogues of locale/, which are built into the program: English, the base
// language, and "german". All texts are UTF-8; a language without a catalogue leaves them in English.
//
// Instances are cheap, because the process parses a catalogue once, when it is first needed, and all
// instances on all threads share it. An instance holds only its default language, which belongs to one
// thread; it does not use the console and may outlive it.
std::shared_ptr<Translator> make(ConsoleServices& console);

// The source of a built-in catalogue, in the PO format and UTF-8; empty if the language ("german") has none.
// The text lives as long as the program.
std::string_view built_in_catalogue(std::string_view language);

}  // namespace zrl::locale
