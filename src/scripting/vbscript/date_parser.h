#pragma once

#include <optional>
#include <string_view>

#include "scripting/vbscript/locale.h"

namespace zrl::vbs {

// The date serial of a text as people of the locale write it ("1/2/2020 3:04 PM", "2 Jan 20",
// "2020-01-02", "15:30"), or nothing.
std::optional<double> parse_date(std::u16string_view text, const Locale& locale);
// What stands between # and #: always in the American order.
std::optional<double> parse_date_literal(std::u16string_view text);

}  // namespace zrl::vbs
