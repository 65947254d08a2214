#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace zrl {

// What an act destroys that cannot be taken back, as the questions that a host asks before it runs the act.
// The texts are English literals of the catalogue; "%1" stands for the number of what is lost, and "%2" for
// the list that loses it. A loss without texts is asked about by the form itself.
struct Loss {
  std::string_view one;      // if it is one
  std::string_view many;     // if it is another number
  std::string_view unknown;  // if nobody can tell how many
};

// How much would be lost now: 0 if the act would destroy nothing, nothing if that cannot be told. It may run
// statements; Form::run() runs it.
using LossCount = std::function<std::optional<std::uint64_t>()>;

namespace loss {

inline constexpr Loss asked_by_form;
inline constexpr Loss log_rows{"Delete 1 row of the logs? This cannot be taken back.",
                               "Delete %1 rows of the logs? This cannot be taken back.",
                               "Delete these rows of the logs? This cannot be taken back."};
inline constexpr Loss rows_of_addresses{"Delete all log rows of 1 IP number? This cannot be taken back.",
                                        "Delete all log rows of %1 IP numbers? This cannot be taken back.",
                                        "Delete these rows of the logs? This cannot be taken back."};
inline constexpr Loss listed_senders{"Change the lists for 1 sender? This cannot be taken back.",
                                     "Change the lists for %1 senders? This cannot be taken back.",
                                     {}};
inline constexpr Loss listed_addresses{"Change the lists for 1 IP number? This cannot be taken back.",
                                       "Change the lists for %1 IP numbers? This cannot be taken back.",
                                       "Change the status of these rows? This cannot be taken back."};
inline constexpr Loss list_entries{"Remove 1 entry from \"%2\"?", "Remove %1 entries from \"%2\"?", {}};
inline constexpr Loss file_entries{
    {}, {}, "Take all entries of the file off the list? This cannot be taken back."};
inline constexpr Loss mail{"Delete this mail from the archive? This cannot be taken back.", {}, {}};
inline constexpr Loss account{
    "Delete this account with its password and settings? This cannot be taken back.", {}, {}};
inline constexpr Loss banner{{}, {}, "Replace the stored banner? This cannot be taken back."};
inline constexpr Loss scripts{
    {}, {}, "Replace the scripts that have the names of published ones? This cannot be taken back."};
inline constexpr Loss service{{}, {}, "Stop the service? No mail comes in until it is started again."};

}  // namespace loss

}  // namespace zrl
