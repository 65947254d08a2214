#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zrl {

class Console;
class Translator;

// Translates texts from English into the display language. English texts never reach the
// translator. No operation throws.
//
// The language is looked for in the translator's default, in the file "language" in the console's
// folder, and in the registry value `language`; what was found is kept as long as the console
// lives. Empty means English.
class Localisation {
 public:
  explicit Localisation(Console& console) : console_(console) {}

  std::string current_language();

  // The text in the current language, or unchanged. A `language` that is given becomes current.
  std::string translate(std::string_view text, std::string_view language = {});

  // The page framework drops the translator after every control, and the next translate() makes a
  // new one; components keep their catalogues outside their instances.
  void release_translator();
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
