#pragma once

#include <string>
#include <string_view>

namespace zrl {

// The localisation component: turns a text of the base language, English, into another language.
// A text that it does not know comes back unchanged.
class Translator {
 public:
  static constexpr std::string_view program_id = "mirvan_locale.translate";

  virtual ~Translator() = default;

  // The language that a new instance would choose by itself: empty unless it was set.
  virtual std::string defaultlanguage() const = 0;
  virtual void set_defaultlanguage(std::string_view language) = 0;

  // Answers (with the number of languages) if the instance is usable, else raises.
  virtual int info() = 0;

  // `language` is a lower-case English name such as "german"; empty means defaultlanguage().
  virtual std::string translate(std::string_view text, std::string_view language) = 0;
};

}  // namespace zrl
