#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/list_catalogue.h"

namespace zrl {

// What a look-up is about: one line of text that a person has typed, or an address taken from a log.
struct Subject {
  enum class Kind : std::uint8_t { nothing, address, network, mail, domain, text };
  // Longer texts are cut there, between two characters.
  static constexpr std::size_t longest = std::size_t{16} << 10;

  Kind kind = Kind::nothing;
  // Trimmed; of a link its host, of a network its normal form (network_entry()), without the dot at the end
  // of a domain.
  std::string text;
  std::string domain;  // of an e-mail address, or the domain itself; in lower case
};

// Never fails: what is nothing else is a text.
Subject subject_of(std::string_view typed);

// An entry that would touch the subject, as it would be stored in a list.
struct Candidate {
  std::string entry;
  Match match;
};

// Those that a list of this kind may hold, each once, the closest match first. Keywords and expressions are
// not among them: every one of those has to be tried.
std::vector<Candidate> candidates(const Subject& subject, const KnownList& list);

// Whether the entry of a list of networks holds the subject. Bits of the entry beyond its prefix are ignored.
// False for what is no network, and for a subject that is neither an address nor a network.
bool holds(std::string_view network, const Subject& subject);

// The list that people mean first when they add such a subject: the name of a black list.
std::string_view usual_list(Subject::Kind kind);

}  // namespace zrl
