#include "components/mail/body_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <vector>

#include <iconv.h>

#include "components/mail/mime_library.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";
constexpr std::size_t chunk_size = std::size_t{64} << 10;

// Mail names a set and uses its larger brother, above all on one platform.
struct Superset {
  std::string_view named;
  const char* meant;
};
constexpr Superset supersets[] = {
    {"us-ascii", ""},         {"ascii", ""},
    {"iso-8859-1", "CP1252"}, {"latin1", "CP1252"},
    {"iso-8859-9", "CP1254"}, {"iso-8859-11", "CP874"},
    {"tis-620", "CP874"},     {"gb2312", "GB18030"},
    {"gbk", "GB18030"},       {"shift_jis", "CP932"},
    {"shift-jis", "CP932"},   {"x-sjis", "CP932"},
    {"euc-kr", "CP949"},      {"ks_c_5601-1987", "CP949"},
};

std::string decoded(std::string_view content, GMimeContentEncoding kind, std::size_t limit) {
  GMimeEncoding state;
  g_mime_encoding_init_decode(&state, kind);
  std::string result;
  std::vector<char> out(g_mime_encoding_outlen(&state, chunk_size));
  const auto decode = [&](std::string_view chunk) {
    result.append(out.data(), g_mime_encoding_step(&state, chunk.data(), chunk.size(), out.data()));
  };
  // Padding ends base64. Of what follows it, and of too little of it, releases of the library make different
  // things.
  const std::size_t padding = kind == GMIME_CONTENT_ENCODING_BASE64 ? content.find('=') : content.npos;
  content = content.substr(0, padding);
  while (!content.empty() && result.size() < limit) {
    decode(content.substr(0, chunk_size));
    content.remove_prefix(std::min(content.size(), chunk_size));
  }
  if (padding != content.npos) decode("==");
  return result;
}

std::string without_transfer_encoding(std::string_view content, const std::string& transfer,
                                      std::size_t limit) {
  const GMimeContentEncoding kind = g_mime_content_encoding_from_string(transfer.c_str());
  const bool encoded =
      kind == GMIME_CONTENT_ENCODING_BASE64 || kind == GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE;
  return encoded ? decoded(content, kind, limit) : std::string(content.substr(0, limit));
}

class Converter {
 public:
  explicit Converter(const char* charset) : handle_(::iconv_open("UTF-8", charset)) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (known()) ::iconv_close(handle_);
  }

  bool known() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  std::string to_utf8(std::string_view bytes, std::size_t limit) {
    std::string result;
    std::array<char, 16384> out;
    char* in = const_cast<char*>(bytes.data());  // not written to
    std::size_t in_left = bytes.size();
    while (in_left > 0 && result.size() < limit) {
      char* out_end = out.data();
      std::size_t out_left = out.size();
      const std::size_t converted = ::iconv(handle_, &in, &in_left, &out_end, &out_left);
      const int problem = converted == static_cast<std::size_t>(-1) ? errno : 0;
      result.append(out.data(), out.size() - out_left);
      if (problem == 0) break;
      if (problem == E2BIG && out_left < out.size()) continue;
      result += replacement;
      ++in;
      --in_left;
    }
    // Some sets keep the last character back, for a mark may follow.
    char* out_end = out.data();
    std::size_t out_left = out.size();
    ::iconv(handle_, nullptr, nullptr, &out_end, &out_left);
    result.append(out.data(), out.size() - out_left);
    return result;
  }

 private:
  iconv_t handle_;
};

// A name that the system may be asked for: more than a name has a meaning there.
bool is_charset_name(std::string_view name) {
  constexpr std::string_view others = "-_.:+()";
  return !name.empty() && name.size() <= 40 && std::ranges::all_of(name, [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || others.find(c) != others.npos;
  });
}

std::string to_utf8(std::string_view bytes, std::string_view charset, std::size_t limit) {
  std::string name = lower(trim(charset));
  const auto superset = std::ranges::find(supersets, name, &Superset::named);
  if (superset != std::end(supersets)) name = superset->meant;
  if (name == "utf-8" || name == "utf8") return valid_utf8(bytes);
  const bool may_be_known = superset != std::end(supersets) ? !name.empty() : is_charset_name(name);
  if (may_be_known) {
    Converter converter(name.c_str());
    if (converter.known()) return valid_utf8(converter.to_utf8(bytes, limit));
  }
  if (is_valid_utf8(bytes)) return std::string(bytes);
  return Converter("CP1252").to_utf8(bytes, limit);
}

// Line ends become line feeds, zero bytes are replaced, and the text is cut between characters.
std::string tidied(std::string_view text, std::size_t limit) {
  constexpr std::size_t longest_character = 4;
  std::string result;
  result.reserve(std::min(text.size(), limit) + longest_character);
  for (std::size_t i = 0; i < text.size() && result.size() < limit + longest_character; ++i) {
    if (text[i] == '\0') {
      result += replacement;
    } else if (text[i] == '\r') {
      if (i + 1 == text.size() || text[i + 1] != '\n') result += '\n';
    } else {
      result += text[i];
    }
  }
  if (result.size() <= limit) return result;
  std::size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(result[end]) & 0xC0) == 0x80) --end;
  result.resize(end);
  return result;
}

}  // namespace

std::string body_text(std::string_view content, const BodyEncoding& encoding, std::size_t limit) {
  initialise_mime_library();
  const std::string bytes = without_transfer_encoding(content, encoding.transfer, limit);
  return tidied(to_utf8(bytes, encoding.charset, limit), limit);
}

}  // namespace zrl
