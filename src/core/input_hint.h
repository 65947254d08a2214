#pragma once

#include <string>
#include <string_view>

#include "core/expectation.h"

namespace zrl {

class Console;

// Why a text does not fit. Empty if it does.
struct InputHint {
  std::string text;         // for people, in the language of the console; printable and bounded
  bool unfinished = false;  // more text may mend it, so it is for those who have stopped typing

  bool operator==(const InputHint&) const = default;
};

// The empty text, and one of blanks, fits everything. The time is in proportion to the text; a regular
// expression is compiled, by the console's component. Records nothing and raises nothing.
InputHint input_hint(Console& console, const Expectation& expected, std::string_view text);

}  // namespace zrl
