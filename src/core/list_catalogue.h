#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "core/contracts/list_tables.h"
#include "core/controls.h"

// What is known of the proxy's lists besides their tables: what people call them, which page edits them,
// which switches make them effective, and how the proxy finds an entry in them. All of it is data, for
// look-ups, overviews and the command line; docs/matching.md tells it to people.
namespace zrl {

// How an entry can touch a text.
enum class Match : std::uint8_t {
  same = 1,           // the text itself, or the domain of an e-mail address
  any_address = 2,    // "@*" or "*@" before the domain: all addresses there
  parent_domain = 4,  // a domain above it, in any of these forms
  network = 8,        // a network in prefix notation that holds the IP number or network
  word = 16,          // the entry occurs in the text
  expression = 32,    // a regular expression that matches in the text
  extension = 64,     // what follows the last dot of a file name
};

class Matches {
 public:
  constexpr Matches(std::initializer_list<Match> matches) {
    for (const Match match : matches) bits_ |= static_cast<unsigned>(match);
  }
  constexpr bool has(Match match) const { return (bits_ & static_cast<unsigned>(match)) != 0; }

 private:
  unsigned bits_ = 0;
};

// What a list does to mail that one of its entries applies to.
enum class Effect : std::uint8_t { rejects, allows, exempts, makes_local, is_asked };

// A switch of a page: the option's key and the caption of its check box, which the catalogue of texts has.
struct ListSwitch {
  std::string_view option;
  std::string_view caption;
};

struct KnownList {
  ListTable table;
  std::string_view title;   // English, a text of the catalogue; so are the next two
  std::string_view words;   // what it is called in the middle of a sentence, behind "the"
  std::string_view phrase;  // says of the entry "%1" that it is on the list
  std::string_view page;    // that edits it, and has its switches
  EntryKind entries;        // what they can be looked up as
  Effect effect;
  // By which of its entries a look-up finds a text touched.
  Matches matches;
  // By which of these the proxy is known to decide. Of the others it is only known that they are listed: the
  // proxy's own rule decides.
  Matches decides;
  // The list is effective if one of these switches is on, or with `all_switches` all of them.
  std::span<const ListSwitch> switches;
  bool all_switches = false;
  // Raised when the list was changed as a whole, by an import for instance, in this order. What is raised for
  // a single entry is part of its change, see list_changes.cpp.
  std::span<const std::string_view> flags = {};
};

// All lists, in the order in which people see them.
std::span<const KnownList> known_lists();

// By name, "domains.black"; null if there is no such list.
const KnownList* find_list(std::string_view name);

}  // namespace zrl
