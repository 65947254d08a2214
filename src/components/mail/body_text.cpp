#include "components/mail/body_text.h"

#include <algorithm>
#include <vector>

#include "components/mail/mime_library.h"
#include "core/text/character_sets.h"
#include "core/text/utf8.h"

namespace zrl::mail {

namespace {

constexpr std::size_t chunk_size = std::size_t{64} << 10;

std::string decoded(std::string_view content, GMimeContentEncoding kind, std::size_t limit) {
  GMimeEncoding state;
  g_mime_encoding_init_decode(&state, kind);
  std::string result;
  std::vector<char> out(g_mime_encoding_outlen(&state, chunk_size));
  const auto decode = [&](std::string_view chunk) {
    result.append(out.data(), g_mime_encoding_step(&state, chunk.data(), chunk.size(), out.data()));
  };
  // Padding ends base64. Releases of the library differ in what they make of text after it, and of missing
  // padding.
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

// Line ends become line feeds, zero bytes are replaced, and the text is cut between characters.
std::string tidied(std::string_view text, std::size_t limit) {
  constexpr std::size_t longest_character = 4;
  std::string result;
  result.reserve(std::min(text.size(), limit) + longest_character);
  for (std::size_t i = 0; i < text.size() && result.size() < limit + longest_character; ++i) {
    if (text[i] == '\0') {
      result += replacement_character;
    } else if (text[i] == '\r') {
      if (i + 1 == text.size() || text[i + 1] != '\n') result += '\n';
    } else {
      result += text[i];
    }
  }
  result.resize(cut_between_characters(result, limit).size());
  return result;
}

}  // namespace

std::string body_text(std::string_view content, const BodyEncoding& encoding, std::size_t limit) {
  initialise_mime_library();
  const std::string bytes = without_transfer_encoding(content, encoding.transfer, limit);
  return tidied(CharacterSet(encoding.charset).decode(bytes, limit), limit);
}

}  // namespace zrl::mail
