#pragma once

#include <string>

#include "core/console.h"
#include "core/controls.h"
#include "pages/traffic/list_search.h"

namespace zrl {

// What the lists say of a subject, in a sentence, and why.
struct Verdict {
  enum class Word : std::uint8_t {
    not_listed,
    rejected,       // decided by a black list
    allowed,        // decided by a white list
    listed,         // touched by entries from which the proxy alone can tell what follows
    not_in_effect,  // touched, but the lists are switched off
  };

  Word word = Word::not_listed;
  std::string sentence;  // in the user's language

  Label::Tone tone() const;
};

// "Rejected" and "allowed" are said only where the proxy's rule is known (KnownList::decides) and nothing on
// another list speaks against it.
Verdict verdict_on(Console& console, const Subject& subject, const ListFindings& findings);

// English words of the catalogue for the kinds of a match, as the table of entries shows them.
std::string_view name_of(Match match);

}  // namespace zrl
