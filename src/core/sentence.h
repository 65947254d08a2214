#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace zrl {

// What an act says of itself, in one sentence for people. The texts are English literals of the catalogue;
// "%1" to "%9" stand for values, which come from people and strangers.
struct Sentence {
  std::string_view done;
  std::string_view failed;    // a colon and the reason are put behind it
  std::string_view one = {};  // in place of `done` where the act is told with a count, and that is one
};

// How hosts show a sentence. An act that changed nothing has not failed.
enum class SentenceTone : std::uint8_t { good, neutral, bad };

// "good", "neutral", "bad", as hosts print it.
constexpr std::string_view name_of(SentenceTone tone) {
  constexpr std::string_view names[] = {"good", "neutral", "bad"};
  return names[static_cast<std::size_t>(tone)];
}

// The values of a sentence, in the order of their places. They are made printable and cut to a bounded
// length.
using SentenceValues = std::initializer_list<std::string_view>;

// What several pages say. `%2` of the lists is Steps::list_words().
namespace said {

inline constexpr Sentence added{"%1 added to the %2", "%1 not added to the %2"};
inline constexpr Sentence removed{"%1 removed from the %2", "%1 not removed from the %2"};
inline constexpr Sentence removed_from_both{"%1 removed from both lists", "%1 not removed from both lists"};
inline constexpr Sentence not_on_list{"Nothing removed: %1 is not in the %2", "%1 not removed from the %2"};
inline constexpr Sentence on_neither_list{"Nothing removed: %1 is in neither list", "%1 not removed"};
inline constexpr Sentence proxy_told{"The proxy is to read the %1 again",
                                     "The proxy was not told to read the %1 again"};
inline constexpr Sentence switched_on{"\"%1\" switched on", "\"%1\" not switched on"};
inline constexpr Sentence switched_off{"\"%1\" switched off", "\"%1\" not switched off"};
inline constexpr Sentence log_rows_of{"Rows of %1 deleted from the logs", "Rows of %1 not deleted"};
inline constexpr Sentence log_rows{"%1 rows deleted from the log", "Rows not deleted from the log",
                                   "1 row deleted from the log"};
inline constexpr Sentence program_started{"Connection to %1 started", "Connection to %1 not started"};

inline constexpr std::string_view no_entry_to_add = "Nothing stored: no entry is given";
inline constexpr std::string_view no_entry_to_remove = "Nothing removed: no entry is given";
inline constexpr std::string_view address_needs_at = "Nothing stored: an address needs an at sign";
inline constexpr std::string_view needs_text = "Nothing done: the field is empty";
inline constexpr std::string_view no_ip_number = "Nothing changed: %1 is no IP number";
inline constexpr std::string_view host_found = "%1 is called %2";
inline constexpr std::string_view host_not_found = "No host name found for %1";

}  // namespace said

}  // namespace zrl
