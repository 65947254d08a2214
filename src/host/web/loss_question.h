#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/console.h"
#include "core/controls.h"

namespace zrl::web {

// The question whether the click of a button shall destroy what the button declares, in the console's
// language. Nothing if it destroys nothing now, or if its form asks by itself. Counts what would be lost.
std::optional<MessageBox> question_before_click(Console& console, Button& button);

// The same before this number of entries is removed from a list.
std::optional<MessageBox> question_before_removal(Console& console, const ListBox& list, std::uint64_t count);

// The question whether what people have typed and not saved, in the fields of these names, may be left.
// Nothing without names. The browser keeps such texts for a while.
std::optional<MessageBox> question_before_leaving(Console& console, const std::vector<std::string>& fields);
// The same before an act puts other texts into them.
std::optional<MessageBox> question_before_replacing(Console& console, const std::vector<std::string>& fields);

}  // namespace zrl::web
