#include <cstddef>
#include <memory>
#include <random>
#include <string>

#include "core/text/base64.h"
#include "text/text_bench.h"

namespace zrl::bench {

namespace {

// The loops that a C programmer writes: one table, one character at a time.
constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string plain_encode(const std::string& bytes) {
  std::string result((bytes.size() + 2) / 3 * 4, '\0');
  std::size_t out = 0;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const unsigned first = byte(at);
    const unsigned second = at + 1 < bytes.size() ? byte(at + 1) : 0;
    const unsigned third = at + 2 < bytes.size() ? byte(at + 2) : 0;
    result[out++] = alphabet[first >> 2];
    result[out++] = alphabet[(first & 3) << 4 | second >> 4];
    result[out++] = at + 1 < bytes.size() ? alphabet[(second & 15) << 2 | third >> 6] : '=';
    result[out++] = at + 2 < bytes.size() ? alphabet[third & 63] : '=';
  }
  return result;
}

struct PlainTable {
  PlainTable() {
    for (signed char& value : values) value = -1;
    for (signed char i = 0; i < 64; ++i) values[static_cast<unsigned char>(alphabet[i])] = i;
  }
  signed char values[256];
};

std::string plain_decode(const std::string& text) {
  static const PlainTable table;
  std::string result(text.size() / 4 * 3 + 3, '\0');
  std::size_t out = 0;
  unsigned bits = 0;
  int count = 0;
  for (const char c : text) {
    const int value = table.values[static_cast<unsigned char>(c)];
    if (value < 0) continue;
    bits = bits << 6 | static_cast<unsigned>(value);
    if (++count % 4 == 0) {
      result[out++] = static_cast<char>(bits >> 16);
      result[out++] = static_cast<char>(bits >> 8);
      result[out++] = static_cast<char>(bits);
    }
  }
  result.resize(out);
  return result;
}

std::string lines_of(const std::string& text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); at += 76) result += text.substr(at, 76) + "\r\n";
  return result;
}

volatile std::size_t kept;

// Many texts of the length of a header, or few of the length of an attachment.
template <typename Function>
Run many(Function function, std::shared_ptr<const std::string> text) {
  const int times = static_cast<int>(30'000'000 / text->size()) + 1;
  return [=] {
    return seconds_of([&] {
      for (int i = 0; i < times; ++i) kept = function(*text).size();
    });
  };
}

}  // namespace

void add_base64(Suite& suite) {
  std::mt19937 source(1);
  for (const std::size_t size : {std::size_t{60}, std::size_t{3'000'000}}) {
    std::string random(size, '\0');
    for (char& c : random) c = static_cast<char>(source());
    const auto bytes = std::make_shared<const std::string>(random);
    const auto text = std::make_shared<const std::string>(base64_encode(random));
    const auto lines = std::make_shared<const std::string>(lines_of(*text));
    const std::string name = " of " + std::to_string(size) + " bytes";
    const auto encode = [](const std::string& input) { return base64_encode(input); };
    const auto decode = [](const std::string& input) { return base64_decode(input); };
    suite.add(Comparison{"base64 encoding" + name, 1.0, many(encode, bytes), many(plain_encode, bytes)});
    suite.add(Comparison{"base64 decoding" + name, 1.0, many(decode, text), many(plain_decode, text)});
    suite.add(
        Comparison{"base64 decoding, in lines," + name, 1.0, many(decode, lines), many(plain_decode, lines)});
  }
}

}  // namespace zrl::bench
