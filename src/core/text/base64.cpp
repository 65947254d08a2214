#include "core/text/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zrl {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Both characters of twelve bits.
constexpr auto pairs = [] {
  std::array<std::array<char, 2>, 4096> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = {alphabet[i >> 6], alphabet[i & 63]};
  return table;
}();

constexpr std::uint32_t foreign = 0xFF000000;

// The bits of a character at each of the four places of a group, or `foreign`.
constexpr auto places = [] {
  std::array<std::array<std::uint32_t, 256>, 4> table{};
  for (auto& place : table) place.fill(foreign);
  for (std::uint32_t i = 0; i < 64; ++i) {
    const auto character = static_cast<unsigned char>(alphabet[i]);
    for (std::uint32_t place = 0; place < 4; ++place) table[place][character] = i << (18 - 6 * place);
  }
  return table;
}();

std::uint32_t byte_at(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}

char* put(char* out, std::uint32_t group, int bytes) {
  for (int i = 0; i < bytes; ++i) *out++ = static_cast<char>(group >> (16 - 8 * i));
  return out;
}

}  // namespace

std::string base64_encode(std::string_view bytes) {
  std::string result((bytes.size() + 2) / 3 * 4, '=');
  char* out = result.data();
  std::size_t at = 0;
  for (; at + 3 <= bytes.size(); at += 3, out += 4) {
    const std::uint32_t group =
        (byte_at(bytes, at) << 16) | (byte_at(bytes, at + 1) << 8) | byte_at(bytes, at + 2);
    const auto& left = pairs[group >> 12];
    const auto& right = pairs[group & 0xFFF];
    out[0] = left[0];
    out[1] = left[1];
    out[2] = right[0];
    out[3] = right[1];
  }
  const std::size_t rest = bytes.size() - at;
  if (rest == 0) return result;
  const std::uint32_t group = (byte_at(bytes, at) << 16) | (rest == 2 ? byte_at(bytes, at + 1) << 8 : 0);
  out[0] = pairs[group >> 12][0];
  out[1] = pairs[group >> 12][1];
  if (rest == 2) out[2] = pairs[group & 0xFFF][0];
  return result;
}

std::string base64_decode(std::string_view text) {
  std::string result(text.size() / 4 * 3 + 3, '\0');
  char* out = result.data();
  std::size_t at = 0;
  std::uint32_t group = 0;
  std::uint32_t taken = 0;  // characters of the group
  while (at < text.size()) {
    while (taken == 0 && at + 4 <= text.size()) {
      const std::uint32_t bits = places[0][byte_at(text, at)] | places[1][byte_at(text, at + 1)] |
                                 places[2][byte_at(text, at + 2)] | places[3][byte_at(text, at + 3)];
      if (bits >= foreign) break;
      out = put(out, bits, 3);
      at += 4;
    }
    if (at == text.size()) break;
    const std::uint32_t character = byte_at(text, at++);
    const std::uint32_t bits = places[taken][character];
    if (bits < foreign) {
      group |= bits;
      ++taken;
    }
    if (taken == 4 || character == '=') {
      if (taken > 1) out = put(out, group, static_cast<int>(taken) - 1);
      group = 0;
      taken = 0;
    }
  }
  if (taken > 1) out = put(out, group, static_cast<int>(taken) - 1);
  result.resize(static_cast<std::size_t>(out - result.data()));
  return result;
}

}  // namespace zrl
