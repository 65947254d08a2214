#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The character sets of incoming texts, by the names that mails use for them (RFC 2978), and their conversion
// to UTF-8.
namespace zrl {

// The character of a byte of Windows-1252. The five bytes that it leaves undefined yield the C1 control of
// the same number.
char16_t windows_1252_character(unsigned char byte);
// The inverse; nothing if Windows-1252 lacks the character.
std::optional<unsigned char> windows_1252_byte(char16_t character);

// The set that a name stands for, in subjects and bodies alike. Mails often name a set and use its superset,
// so "iso-8859-1" is read as Windows-1252, "gb2312" as GB 18030, "shift_jis" and "ks_c_5601-1987" as their
// extensions. Bytes beyond ASCII in "us-ascii", or in a set that nobody knows, are read as UTF-8 if they are
// well-formed, else as Windows-1252; a text in UTF-8 that was cut within its last character counts as
// well-formed. All other sets are those of the C library (iconv). Conversions never raise an error. An object
// keeps the state of a conversion, so only one thread may use it at a time.
class CharacterSet {
 public:
  // In bytes; a longer name is an unknown one.
  static constexpr std::size_t longest_name = 40;
  static constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();

  // Whether `c` may stand in a name. Other characters could change what the C library does, "//" for example.
  static bool is_name_character(char c);
  // False if the C library has to be asked for the set, which may read files. Case is ignored.
  static bool is_built_in(std::string_view name);

  // Case and blanks around the name are ignored.
  explicit CharacterSet(std::string_view name);
  CharacterSet(const CharacterSet&) = delete;
  CharacterSet& operator=(const CharacterSet&) = delete;
  ~CharacterSet();

  // `bytes` in well-formed UTF-8, with U+FFFD for what does not fit. `limit` bounds the work, not the length:
  // a conversion ends soon after so many bytes of result; bytes that are UTF-8 already are returned whole.
  std::string decode(std::string_view bytes, std::size_t limit = no_limit);

 private:
  enum class Kind { guessed, utf8, windows_1252, system };
  class Conversion;

  Kind kind_ = Kind::guessed;
  std::unique_ptr<Conversion> conversion_;  // of the kind `system`
};

}  // namespace zrl
