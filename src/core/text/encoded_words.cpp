#include "core/text/encoded_words.h"

#include <cstddef>
#include <map>
#include <optional>

#include "core/text/ascii.h"
#include "core/text/base64.h"
#include "core/text/character_sets.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::size_t longest_charset = CharacterSet::longest_name;
// Looking for a character set may read files; no honest header names more.
constexpr int most_charsets = 8;

struct EncodedWord {
  std::string charset;  // lower-case
  std::string bytes;
  std::size_t length;  // in the header
};

std::string decode_q(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '=' && i + 2 < text.size() ? hex_value(text[i + 1]) : -1;
    const int low = high >= 0 ? hex_value(text[i + 2]) : -1;
    if (low >= 0) {
      result += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      result += text[i] == '_' ? ' ' : text[i];
    }
  }
  return result;
}

// Where the "?=" of a word lies. A question mark inside is tolerated, the start of another word is not.
std::optional<std::size_t> end_of_word(std::string_view text, std::size_t begin) {
  for (std::size_t at = text.find('?', begin); at != text.npos; at = text.find('?', at + 1)) {
    if (at + 1 < text.size() && text[at + 1] == '=') return at;
    if (at > begin && text[at - 1] == '=') return std::nullopt;
  }
  return std::nullopt;
}

// The word at the start of `text`, if one is there.
std::optional<EncodedWord> parse_word(std::string_view text) {
  if (!text.starts_with("=?")) return std::nullopt;
  std::size_t at = 2;
  while (at < text.size() && at - 2 <= longest_charset && CharacterSet::is_name_character(text[at])) ++at;
  const std::string_view charset = text.substr(2, at - 2);
  if (charset.empty() || charset.size() > longest_charset) return std::nullopt;
  if (at < text.size() && text[at] == '*') {  // a language follows (RFC 2231)
    const std::size_t longest = at + longest_charset;
    while (at < text.size() && at < longest && text[at] != '?') ++at;
  }
  if (at + 3 > text.size() || text[at] != '?' || text[at + 2] != '?') return std::nullopt;
  const char encoding = text[at + 1];
  const bool is_b = encoding == 'b' || encoding == 'B';
  if (!is_b && encoding != 'q' && encoding != 'Q') return std::nullopt;
  const std::size_t begin = at + 3;
  const std::optional<std::size_t> end = end_of_word(text, begin);
  if (!end) return std::nullopt;
  const std::string_view encoded = text.substr(begin, *end - begin);
  return EncodedWord{lower(charset), is_b ? base64_decode(encoded) : decode_q(encoded), *end + 2};
}

class Decoder {
 public:
  explicit Decoder(std::string_view header) : rest_(header) {}

  std::string run() {
    while (!rest_.empty()) {
      const std::size_t start = std::min(rest_.find("=?"), rest_.size());
      keep(rest_.substr(0, start));
      if (!take_words()) keep(rest_.substr(0, 2));
    }
    return std::move(out_);
  }

 private:
  void keep(std::string_view text) {
    out_ += plain_.decode(text);
    rest_.remove_prefix(text.size());
  }

  // Words that follow each other with nothing but blanks between them.
  bool take_words() {
    bool found = false;
    while (true) {
      const std::size_t gap = found ? std::min(rest_.find_first_not_of(blanks), rest_.size()) : 0;
      std::optional<EncodedWord> word = parse_word(rest_.substr(gap));
      if (!word) break;
      if (word->charset != charset_) end_group();
      charset_ = std::move(word->charset);
      bytes_ += word->bytes;
      rest_.remove_prefix(gap + word->length);
      found = true;
    }
    end_group();
    return found;
  }

  // Neighbours of one character set are converted together, for they may share a character.
  void end_group() {
    if (!bytes_.empty()) out_ += charset().decode(bytes_);
    bytes_.clear();
  }

  CharacterSet& charset() {
    const auto found = charsets_.find(charset_);
    if (found != charsets_.end()) return found->second;
    const bool is_known = CharacterSet::is_built_in(charset_) || ++looked_up_ <= most_charsets;
    return charsets_.try_emplace(charset_, is_known ? charset_ : std::string()).first->second;
  }

  CharacterSet plain_{"us-ascii"};
  std::string_view rest_;
  std::string out_;
  std::string charset_;
  std::string bytes_;
  std::map<std::string, CharacterSet> charsets_;
  int looked_up_ = 0;
};

}  // namespace

std::string decode_encoded_words(std::string_view header) {
  return Decoder(header).run();
}

}  // namespace zrl
