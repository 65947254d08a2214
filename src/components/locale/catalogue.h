#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::locale {

// The texts of one language, read from a message catalogue in the PO format of GNU gettext: the
// entries msgid and msgstr, continued strings, the escapes \n \r \t \" \\, comments. Entries with
// an empty translation count as missing.
//
// A msgid that ends in "*" matches every text that begins with what precedes the "*"; the rest of the text
// replaces the "*" in the translation. Exact entries take precedence.
class Catalogue {
 public:
  // Raises zrl::Error, with the number of the line, if the text (UTF-8) is no catalogue.
  static Catalogue parse(std::string_view po_text);

  // The translation, or `text` itself.
  std::string translate(std::string_view text) const;

  bool has(std::string_view text) const;
  std::size_t size() const { return texts_.size() + prefixes_.size(); }

 private:
  struct Prefix {
    std::string begin;
    std::string before;  // what the translation puts before the rest
    std::string after;
  };

  const Prefix* prefix_of(std::string_view text) const;
  void add(std::string id, std::string text);

  std::map<std::string, std::string, std::less<>> texts_;
  std::vector<Prefix> prefixes_;
};

}  // namespace zrl::locale
