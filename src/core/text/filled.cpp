#include "core/text/filled.h"

namespace zrl {

std::string filled(std::string_view text, std::span<const std::string_view> values) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_place = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    const auto number = is_place ? static_cast<std::size_t>(text[i + 1] - '1') : values.size();
    if (number >= values.size()) {
      result += text[i];
    } else {
      result += values[number];
      ++i;
    }
  }
  return result;
}

}  // namespace zrl
