#include <string>

#include "components/locale/catalogue.h"
#include "components/locale/locale.h"

// The catalogue files, put between these marks by the assembler.
extern "C" {
extern const char zrl_locale_german_begin[];
extern const char zrl_locale_german_end[];
}

namespace zrl::locale {

namespace {

const Catalogue& catalogue_of(std::string_view language) {
  static const Catalogue german = Catalogue::parse(built_in_catalogue("german"));
  static const Catalogue none;
  return language == "german" ? german : none;
}

class CatalogueTranslator : public Translator {
 public:
  std::string defaultlanguage() const override { return language_; }
  void set_defaultlanguage(std::string_view language) override { language_ = language; }
  int info() override { return 2; }  // English and German
  std::string translate(std::string_view text, std::string_view language) override {
    return catalogue_of(language.empty() ? language_ : language).translate(text);
  }

 private:
  std::string language_;
};

}  // namespace

std::shared_ptr<Translator> make(ConsoleServices&) {
  return std::make_shared<CatalogueTranslator>();
}

std::string_view built_in_catalogue(std::string_view language) {
  if (language != "german") return {};
  return {zrl_locale_german_begin, static_cast<std::size_t>(zrl_locale_german_end - zrl_locale_german_begin)};
}

}  // namespace zrl::locale
