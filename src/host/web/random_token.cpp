#include "host/web/random_token.h"

#include <array>

#include <sodium.h>

namespace zrl::web {

std::string random_token() {
  std::array<unsigned char, 32> bytes{};
  ::randombytes_buf(bytes.data(), bytes.size());
  std::array<char, 2 * bytes.size() + 1> text{};
  ::sodium_bin2hex(text.data(), text.size(), bytes.data(), bytes.size());
  return text.data();
}

}  // namespace zrl::web
