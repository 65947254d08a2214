#pragma once

#include <string>
#include <string_view>

namespace zrl {

// The text of a header in well-formed UTF-8: its encoded words (RFC 2047; with the languages of RFC 2231) and
// the bytes around them, each read in the sets of character_sets.h; other text counts as us-ascii there.
// Blanks and line breaks between neighbouring words belong to the encoding and are dropped. What is no
// encoded word, or has an unknown encoding, is text. A character may be split over neighbouring words of one
// character set. Beyond eight sets that only the C library has, a header's sets are unknown ones.
//
// Raises no error. Time and memory are linear in the length of the text. The result may hold control
// characters and line breaks that were hidden in an encoded word.
std::string decode_encoded_words(std::string_view header);

}  // namespace zrl
