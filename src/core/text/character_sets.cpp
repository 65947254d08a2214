#include "core/text/character_sets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>

#include <iconv.h>

#include "core/text/ascii.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr unsigned char first_special = 0x80;
// 0x80 to 0x9F; all others are those of Unicode.
constexpr std::array<char16_t, 32> windows_1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::string_view guess = "?";
constexpr std::string_view utf8 = "UTF-8";
constexpr std::string_view cp1252 = "CP1252";

struct Meaning {
  std::string_view name;
  std::string_view meant;  // a name of the C library, or one of those above
};
constexpr Meaning meanings[] = {
    {"us-ascii", guess},
    {"us_ascii", guess},
    {"ascii", guess},
    {"ansi_x3.4-1968", guess},
    {"utf-8", utf8},
    {"utf8", utf8},
    {"utf_8", utf8},
    {"unicode-1-1-utf-8", utf8},
    {"iso-8859-1", cp1252},
    {"iso8859-1", cp1252},
    {"iso_8859-1", cp1252},
    {"latin1", cp1252},
    {"latin-1", cp1252},
    {"l1", cp1252},
    {"windows-1252", cp1252},
    {"cp1252", cp1252},
    {"x-cp1252", cp1252},
    {"iso-8859-9", "CP1254"},
    {"latin5", "CP1254"},
    {"iso-8859-11", "CP874"},
    {"tis-620", "CP874"},
    {"iso-8859-6-i", "ISO-8859-6"},
    {"iso-8859-8-i", "ISO-8859-8"},
    {"gb2312", "GB18030"},
    {"gb_2312-80", "GB18030"},
    {"gbk", "GB18030"},
    {"x-gbk", "GB18030"},
    {"cp936", "GB18030"},
    {"euc-cn", "GB18030"},
    {"x-x-big5", "BIG5"},
    {"shift_jis", "CP932"},
    {"shift-jis", "CP932"},
    {"sjis", "CP932"},
    {"x-sjis", "CP932"},
    {"ms_kanji", "CP932"},
    {"euc-jp", "EUC-JP-MS"},
    {"x-euc-jp", "EUC-JP-MS"},
    {"euc-kr", "CP949"},
    {"x-euc-kr", "CP949"},
    {"ks_c_5601-1987", "CP949"},
    {"ks_c_5601-1989", "CP949"},
    {"ksc5601", "CP949"},
    {"ksc_5601", "CP949"},
    {"korean", "CP949"},
    {"windows-949", "CP949"},
};

// Nothing if there can be no set of this name.
std::string meaning_of(std::string_view name) {
  const std::string small = lower(trim(name));
  const auto* found = std::ranges::find(meanings, small, &Meaning::name);
  if (found != std::end(meanings)) return std::string(found->meant);
  const bool is_name = small.size() <= CharacterSet::longest_name &&
                       std::ranges::all_of(small, CharacterSet::is_name_character);
  return is_name ? small : std::string();
}

std::string from_windows_1252(std::string_view bytes, std::size_t limit) {
  std::string result;
  for (const char c : bytes.substr(0, limit)) {
    const auto byte = static_cast<unsigned char>(c);
    const char16_t character = windows_1252_character(byte);
    const bool is_free = byte >= first_special && character == byte && byte < 0xA0;
    append_character(result, is_free ? 0xFFFD : character);
  }
  return result;
}

// The bytes at the end that begin a character of UTF-8 and are too few for it.
std::size_t cut_character_length(std::string_view bytes) {
  constexpr std::size_t longest = 3;
  for (std::size_t length = 1; length <= std::min(longest, bytes.size()); ++length) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - length]);
    if (is_continuation(bytes[bytes.size() - length])) continue;
    const std::size_t needed = byte < 0xC2 || byte > 0xF4 ? 0 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    return length < needed ? length : 0;
  }
  return 0;
}

// A lone byte beyond ASCII at the end is no sign of UTF-8; there has to be a whole character before it.
bool is_most_likely_utf8(std::string_view bytes) {
  const std::string_view whole = bytes.substr(0, bytes.size() - cut_character_length(bytes));
  const bool has_characters = whole.size() == bytes.size() || std::ranges::any_of(whole, is_continuation);
  return has_characters && is_valid_utf8(whole);
}

}  // namespace

char16_t windows_1252_character(unsigned char byte) {
  const std::size_t special = static_cast<std::size_t>(byte) - first_special;
  return byte >= first_special && special < windows_1252.size() ? windows_1252[special] : byte;
}

std::optional<unsigned char> windows_1252_byte(char16_t character) {
  if (character < first_special || (character >= 0xA0 && character <= 0xFF)) {
    return static_cast<unsigned char>(character);
  }
  const auto* found = std::ranges::find(windows_1252, character);
  if (found == windows_1252.end()) return std::nullopt;
  return static_cast<unsigned char>(first_special + (found - windows_1252.begin()));
}

// A conversion of the C library.
class CharacterSet::Conversion {
 public:
  explicit Conversion(const std::string& name) : handle_(::iconv_open("UTF-8", name.c_str())) {}
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;
  ~Conversion() {
    if (is_usable()) ::iconv_close(handle_);
  }

  bool is_usable() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  std::string run(std::string_view bytes, std::size_t limit) {
    ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    std::string result;
    char* in = const_cast<char*>(bytes.data());  // it is only read
    std::size_t left = bytes.size();
    while (left > 0 && result.size() < limit) {
      if (step(&in, &left, result) == 0) continue;
      result += replacement_character;
      ++in;
      --left;
    }
    step(nullptr, nullptr, result);  // some sets keep the last character back, for a mark may follow
    return valid_utf8(result);
  }

 private:
  // 0 if all went well, or more room was all that it needed.
  int step(char** in, std::size_t* left, std::string& result) {
    std::array<char, 16384> block;
    char* out = block.data();
    std::size_t room = block.size();
    const std::size_t done = ::iconv(handle_, in, left, &out, &room);
    const int problem = done == static_cast<std::size_t>(-1) ? errno : 0;
    result.append(block.data(), block.size() - room);
    return problem == E2BIG && room < block.size() ? 0 : problem;
  }

  iconv_t handle_;
};

bool CharacterSet::is_name_character(char c) {
  constexpr std::string_view others = "-_.:+()";
  return is_letter_or_digit(c) || others.find(c) != others.npos;
}

bool CharacterSet::is_built_in(std::string_view name) {
  const std::string meant = meaning_of(name);
  return meant.empty() || meant == guess || meant == utf8 || meant == cp1252;
}

CharacterSet::CharacterSet(std::string_view name) {
  const std::string meant = meaning_of(name);
  if (meant == utf8) {
    kind_ = Kind::utf8;
  } else if (meant == cp1252) {
    kind_ = Kind::windows_1252;
  } else if (!meant.empty() && meant != guess) {
    conversion_ = std::make_unique<Conversion>(meant);
    if (conversion_->is_usable()) kind_ = Kind::system;
  }
}

CharacterSet::~CharacterSet() = default;

std::string CharacterSet::decode(std::string_view bytes, std::size_t limit) {
  if (kind_ == Kind::system) return conversion_->run(bytes, limit);
  const bool is_utf8 = kind_ == Kind::utf8 || (kind_ == Kind::guessed && is_most_likely_utf8(bytes));
  return is_utf8 ? valid_utf8(bytes) : from_windows_1252(bytes, limit);
}

}  // namespace zrl
