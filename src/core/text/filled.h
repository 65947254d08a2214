#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace zrl {

// The text with the values in the places "%1" to "%9". A place without a value stays as it is. What a value
// holds is not read again, so it may come from strangers; it is neither cut nor made printable.
std::string filled(std::string_view text, std::span<const std::string_view> values);
inline std::string filled(std::string_view text, std::initializer_list<std::string_view> values) {
  return filled(text, std::span(values.begin(), values.size()));
}

}  // namespace zrl
