#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zrl::checks {

// The body of the first Subject field of a header (RFC 5322), unfolded and trimmed, otherwise unchanged
// (encoded words are not decoded); empty if there is none. The header ends at its first empty line.
std::string subject_of(std::string_view header);

// The length of the longest sequence of blanks (spaces and tabs).
std::size_t longest_run_of_blanks(std::string_view text);

}  // namespace zrl::checks
