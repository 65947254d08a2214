#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Decodes the encoded words of a header (RFC 2047; with the languages of RFC 2231), in the sets of
// character_sets.h, to UTF-8. Blanks and line breaks between neighbouring words that were decoded belong to
// the encoding and are dropped. All other text is kept byte for byte, well-formed or not, and so is a word
// whose encoding or character set is unknown, whose bytes do not fit its character set, or that would need a
// ninth set from the C library. A character may be split over neighbouring words of one character set.
//
// Raises no error. Time and memory are linear in the length of the text. The result may hold control
// characters and line breaks that were hidden in an encoded word.
std::string decode_encoded_words(std::string_view header);

}  // namespace zrl
