#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Decodes the encoded words of a header (RFC 2047), in the sets of character_sets.h, to UTF-8. Blanks and
// line breaks between neighbouring words that were decoded belong to the encoding and are dropped; all other
// text is kept as it is, and so is a word whose encoding or character set is unknown, whose bytes do not fit
// its character set, or that follows too many other character sets. A character may be split over
// neighbouring words of one character set. Time and memory grow with the length of the text and no faster.
std::string decode_encoded_words(std::string_view header);

}  // namespace zrl
