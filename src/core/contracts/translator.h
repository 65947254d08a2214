#pragma once

#include <string>
#include <string_view>

namespace zrl {

// The localisation component: translates a text of the base language, English, into another language. Texts
// are UTF-8 and looked up as a whole, byte by byte; one that is not in the catalogue comes back unchanged.
// Instances are created and dropped often, so an implementation keeps its catalogues outside of them.
class Translator {
 public:
  static constexpr std::string_view program_id = "mirvan_locale.translate";

  virtual ~Translator() = default;

  // The language of translate() where none is given: empty, which is English, unless it was set on this
  // instance or the implementation has a setting of its own.
  virtual std::string defaultlanguage() const = 0;
  virtual void set_defaultlanguage(std::string_view language) = 0;

  // Returns the number of languages if the instance is usable, else raises zrl::Error.
  virtual int info() = 0;

  // `language` is a lower-case English name such as "german"; empty means defaultlanguage(). A language that
  // the component lacks leaves every text unchanged.
  virtual std::string translate(std::string_view text, std::string_view language) = 0;
};

}  // namespace zrl
