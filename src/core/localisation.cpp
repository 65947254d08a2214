#include "core/localisation.h"

#include <algorithm>
#include <filesystem>

#include "core/console.h"
#include "core/contracts/translator.h"
#include "core/text/ascii.h"
#include "core/text/files.h"
#include "core/text/text.h"

namespace zrl {

namespace {

using Kind = ActivityRecord::Kind;
using Step = Console::Step;

constexpr std::string_view english = "english";
constexpr std::size_t longest_name = 32;

// Whoever sees the sign-in page sees the language, too. Accounts that share the folder may have made the file
// a link to one which only this account may read.
std::string language_named(std::string_view content) {
  std::string name = lower(trim(content));
  const bool is_name = name.size() <= longest_name && std::ranges::all_of(name, is_letter);
  return is_name ? name : std::string();
}

}  // namespace

std::string Localisation::current_language() {
  if (!language_.empty()) return language_;
  std::string found = translators_language();
  if (found.empty()) {
    const std::filesystem::path path = console_.folder() / "language";
    std::error_code failure;
    if (std::filesystem::exists(path, failure)) {
      console_.attempt(Kind::file, "language", Step::read, [&] { found = language_named(read_file(path)); });
    }
  }
  if (found.empty()) found = lower(console_.settings().regread(console_.settings().language_path()));
  if (!found.empty()) {
    language_ = found;
    tell_translator();
  }
  return found;
}

std::string Localisation::translate(std::string_view text, std::string_view language) {
  if (!language.empty()) {
    language_ = language;
    tell_translator();
    const std::string accepted = translators_language();
    if (!accepted.empty()) language_ = accepted;
  }
  if (!loaded_) create_translator();
  bool usable = answers();
  if (!usable) {
    create_translator();
    usable = answers();
  }
  const std::string wanted = current_language();
  if (!usable || wanted.empty() || wanted == english) return std::string(text);
  std::string result(text);
  console_.attempt(Kind::component, "translate", Step::read,
                   [&] { result = translator_->translate(text, wanted); });
  return result;
}

bool Localisation::store_language(std::string_view language) {
  Settings& settings = console_.settings();
  const bool german = language == "german";
  const bool stored = german ? settings.regwrite_string(settings.language_path(), language)
                             : settings.delete_value(settings.language_path());
  if (stored) {
    console_.acts().say(german ? "The language is German" : "The language is English", SentenceTone::good,
                        {});
  } else {
    console_.acts().say("The language was not stored", SentenceTone::bad, {}, Acts::Reason::told);
  }
  return stored;
}

void Localisation::release_translator() {
  loaded_ = false;
  translator_.reset();
}

void Localisation::create_translator() {
  translator_.reset();
  loaded_ = console_.components().has(Translator::program_id) &&
            console_.attempt(Kind::component, "create mirvan_locale.translate", Step::read,
                             [&] { translator_ = console_.components().create<Translator>(); });
}

bool Localisation::answers() {
  try {
    return translator_ && translator_->info() >= 0;
  } catch (const std::exception&) {
    return false;  // the caller creates it again
  }
}

void Localisation::tell_translator() {
  if (!translator_) return;
  console_.attempt(Kind::component, "defaultlanguage", Step::read,
                   [&] { translator_->set_defaultlanguage(language_); });
}

std::string Localisation::translators_language() {
  std::string result;
  if (!translator_) return result;
  console_.attempt(Kind::component, "defaultlanguage", Step::read,
                   [&] { result = translator_->defaultlanguage(); });
  return result;
}

}  // namespace zrl
