#include "components/locale/catalogue_translator.h"

#include <map>
#include <string>

#include "components/locale/catalogue.h"

// The catalogue files, put between these marks by the assembler.
extern "C" {
extern const char zrl_locale_german_begin[];
extern const char zrl_locale_german_end[];
}

namespace zrl {

namespace {

class Catalogues {
 public:
  const Catalogue& of(std::string_view language) {
    const auto found = read_.find(language);
    if (found != read_.end()) return found->second;
    return read_.emplace(language, Catalogue::parse(built_in_catalogue(language))).first->second;
  }

 private:
  std::map<std::string, Catalogue, std::less<>> read_;
};

class CatalogueTranslator : public Translator {
 public:
  explicit CatalogueTranslator(std::shared_ptr<Catalogues> catalogues) : catalogues_(std::move(catalogues)) {}

  std::string defaultlanguage() const override { return language_; }
  void set_defaultlanguage(std::string_view language) override { language_ = language; }
  int info() override { return 2; }  // English and German
  std::string translate(std::string_view text, std::string_view language) override {
    return catalogues_->of(language.empty() ? language_ : language).translate(text);
  }

 private:
  std::shared_ptr<Catalogues> catalogues_;
  std::string language_;
};

}  // namespace

std::function<std::shared_ptr<Translator>()> make_translator_factory() {
  return [catalogues = std::make_shared<Catalogues>()] {
    return std::make_shared<CatalogueTranslator>(catalogues);
  };
}

std::string_view built_in_catalogue(std::string_view language) {
  if (language != "german") return {};
  return {zrl_locale_german_begin, static_cast<std::size_t>(zrl_locale_german_end - zrl_locale_german_begin)};
}

}  // namespace zrl
