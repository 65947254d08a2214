#pragma once

#include <string>
#include <string_view>

namespace zrl {

// UTF-8 text in lower case, letter by letter: the simple lower-case mapping of Unicode for the letters of
// ASCII, Latin, Greek, Cyrillic and Armenian. Others stay, and so do bytes that belong to no character. The
// result does not depend on the locale, but its length in bytes may differ from the text's. lower() in text.h
// is for names that are ASCII by their standard.
std::string lower_unicode(std::string_view text);

}  // namespace zrl
