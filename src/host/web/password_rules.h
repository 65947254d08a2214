#pragma once

#include <string_view>

namespace zrl::web {

inline constexpr int shortest_password = 12;   // characters
inline constexpr int longest_password = 1024;  // bytes

// Why a password may not be chosen: "weak_password" if it is too short or too long, "common_password" if it
// is made of what people choose most and guessers try first, or of the account's name; empty if it may.
//
// Common are texts that consist of nothing but a few such pieces: the words that head the lists of passwords
// found in break-ins (also with digits in the place of letters, as in "p4ssw0rd"), the account's name, runs
// of the alphabet, of digits and of keys beside each other, repeated characters, years, and single characters
// around them. Of the 10,000 commonest passwords only 25 have twelve characters or more. 17 of these are made
// of such pieces, the others are refused as a whole.
std::string_view password_fault(std::string_view password, std::string_view account);

}  // namespace zrl::web
