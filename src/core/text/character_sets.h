#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The character sets that texts come in, by the names that mails give them (RFC 2978), and their way to
// UTF-8.
namespace zrl {

// The character of a byte of Windows-1252; one of C1 for the five bytes that it leaves free.
char16_t windows_1252_character(unsigned char byte);
// The way back; nothing for what it lacks.
std::optional<unsigned char> windows_1252_byte(char16_t character);

// What a name stands for. Mails name a set and use its larger brother, so that "iso-8859-1" is read as
// Windows-1252, "gb2312" as GB 18030, "shift_jis" and "ks_c_5601-1987" as their extensions. "us-ascii" with
// bytes beyond it is UTF-8 if it can be, else Windows-1252. Other sets are those of the C library.
// Conversions never raise an error.
class CharacterSet {
 public:
  static constexpr std::size_t longest_name = 40;

  // Whether `c` may stand in a name: more than that has a meaning to the C library.
  static bool is_name_character(char c);
  // Whether a set is here and not the C library's, which may read files for it. In either case of letters.
  static bool is_built_in(std::string_view name);

  // In either case of letters, with or without blanks around it.
  explicit CharacterSet(std::string_view name);
  CharacterSet(const CharacterSet&) = delete;
  CharacterSet& operator=(const CharacterSet&) = delete;
  ~CharacterSet();

  // Without one of this name, bytes are read like those of us-ascii.
  bool is_known() const { return kind_ != Kind::unknown; }

  // `bytes` in UTF-8; nothing if they do not fit the set.
  std::optional<std::string> exact(std::string_view bytes);
  // With U+FFFD for what does not fit. Reading ends behind about `limit` bytes of result.
  std::string repaired(std::string_view bytes, std::size_t limit);

 private:
  enum class Kind { unknown, guessed, utf8, windows_1252, system };
  class Conversion;

  Kind kind_ = Kind::unknown;
  std::unique_ptr<Conversion> conversion_;  // of the kind `system`
};

}  // namespace zrl
