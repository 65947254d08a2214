#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Appends a cell to a line of comma-separated values (RFC 4180), in quotes, with a comma before it unless the
// line is empty. Bytes that are no UTF-8 become U+FFFD. A text that a spreadsheet would take for a formula
// (it begins with "=", "+", "-", "@", a tab or a carriage return) gets an apostrophe in front, since cells
// may come from strangers. The line has no end; that is CRLF.
void append_csv(std::string& line, std::string_view cell);

}  // namespace zrl
