#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zrl {

class Console;
class Translator;

// Translates texts from English into the display language, by the component Translator. While the language is
// English, texts never reach the translator. No operation throws: a failure is recorded as a failed read, and
// the text stays English. A missing component is no failure. Owned by the console, which outlives it.
//
// The language is looked for in the translator's default, then in the file "language" in the console's
// folder, then in the registry value `language`. What was found is kept as long as the console lives; while
// nothing is found, which means English, each call looks again.
class Localisation {
 public:
  explicit Localisation(Console& console) : console_(console) {}

  // An English name in lower case, "german" for example; empty or "english" for English.
  std::string current_language();

  // The text (UTF-8) in the current language, or unchanged if it has no translation. A `language` that is
  // given becomes current for this and all later calls.
  std::string translate(std::string_view text, std::string_view language = {});

  // Stores the language for the consoles to come, this one keeps its own; says so. English is the default and
  // is stored as the absence of the value. False if that failed, which is recorded and said.
  bool store_language(std::string_view language);

  // The page framework drops the translator after every control, and the next translate() makes a new one.
  // That is cheap because components keep their catalogues outside their instances.
  void release_translator();
  // Replaces the translator by a new instance, if the component is registered.
  void create_translator();

 private:
  bool answers();
  void tell_translator();
  std::string translators_language();

  Console& console_;
  std::string language_;
  std::shared_ptr<Translator> translator_;
  bool loaded_ = false;
};

}  // namespace zrl
