#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/database_client.h"

// The one home of "put this entry on that list" and "take it off again": whoever changes a list by single
// entries ends here, so that statements, exclusions, normalisation, refusals and reload flags are the same
// wherever an entry comes from. What the lists differ in is data, see list_changes.cpp.
namespace zrl {

// A step of a change. Each acts on the entry, or on the domain of the entry if that is an e-mail address.
// Tables are referred to, not copied: they are constants. Flags are literals.
struct EntryStep {
  enum class Verb : std::uint8_t {
    put_on,           // INSERT INTO the list
    take_off,         // DELETE FROM the list
    take_off_any,     // the same for "@*" and the entry, which stands for all addresses of a domain
    take_lower_off,   // the entry in lower case; as it is too, where that may make a difference
    take_domain_off,  // the entry's domain, if it has one (domain_of_address())
    move_domain,      // the entry's domain: off the list and on it again
    purge,            // empty entries
    call,             // an operation of the component
    raise,            // a reload flag
  };
  // When the step is executed: `accepted`, if the list accepts the text; `stored`, if the put_on before it
  // worked; `storable`, if the one after it will not be refused as malformed.
  enum class When : std::uint8_t { accepted, always, storable, stored, without_dot };
  using Operation = bool (DatabaseClient::*)(std::string_view);

  Verb verb;
  const ListTable* list = nullptr;
  std::string_view flag = {};
  Operation operation = nullptr;
  When when = When::accepted;

  constexpr EntryStep only(When condition) const {
    EntryStep copy = *this;
    copy.when = condition;
    return copy;
  }
};

constexpr EntryStep put_on(const ListTable& list) {
  return {EntryStep::Verb::put_on, &list};
}
constexpr EntryStep take_off(const ListTable& list) {
  return {EntryStep::Verb::take_off, &list};
}
constexpr EntryStep take_off_any(const ListTable& list) {
  return {EntryStep::Verb::take_off_any, &list};
}

// Executes the steps for an entry, as it stands; for pages whose buttons change lists in a way of their own.
// Whether every put_on worked. A step that fails is recorded, and the next one is executed.
bool run_entry_steps(DatabaseClient& client, std::span<const EntryStep> steps, std::string_view entry);

// Reasons of refusals, beside those of core/text/list_entry.h.
inline constexpr std::string_view no_mail_address = "Not an e-mail address: it has no at sign";
inline constexpr std::string_view dotted_extension = "An extension is entered without its dot";

// What became of an entry.
struct EntryChange {
  enum class State : std::uint8_t {
    added,
    already,  // it was on the list; the statements were executed all the same
    removed,
    missing,  // it was not on the list
    refused,  // see `reason`
  };

  State state = State::refused;
  std::string entry;          // as it is stored, or looked for: trimmed, escaped, in lower case...
  std::string reason = {};    // of a refusal: English, a text of the catalogue or an error of the database
  std::uint64_t removed = 0;  // rows of this list that were taken off it
  // Of a removal: all lists that the entry was looked for in, and those of them that had it. To constants.
  std::vector<const ListTable*> searched = {};
  std::vector<const ListTable*> left = {};

  bool done() const { return state != State::refused && state != State::missing; }
};

// Both do what the list's page does when `text` is typed and its button pressed. They raise nothing, and what
// is written becomes part of the action that is running (core/action_writes.h): it counts when that has been
// committed. Several pages have one button for two lists; removing an entry then removes it from both.
//
// `list` must be one of those in core/contracts/list_tables.h, else the change is refused.
EntryChange add_entry(DatabaseClient& client, Console& console, const ListTable& list, std::string_view text);

// With IfMissing::leave nothing is executed for an entry that is not on this very list, so that naming one
// list never takes an entry off another one alone. Buttons act in any case.
enum class IfMissing : std::uint8_t { act, leave };
EntryChange remove_entry(DatabaseClient& client, Console& console, const ListTable& list,
                         std::string_view text, IfMissing if_missing = IfMissing::act);

// Say what became of an entry, which is what list pages do. `text` is what was typed.
void say_addition(const Steps& steps, const ListTable& list, std::string_view text,
                  const EntryChange& change);
void say_removal(const Steps& steps, Console& console, const ListTable& list, std::string_view text,
                 const EntryChange& change);

// The text as add_entry() would store it, if the list takes it.
std::string entry_for(const ListTable& list, std::string_view text);

// How many rows hold the entry, as it stands; 0 if that cannot be read, which is not recorded.
std::uint64_t rows_with(DatabaseClient& client, const ListTable& list, std::string_view entry);

// The domain of an e-mail address in the form of the domain lists: the text after the first "@", in lower
// case. Empty if there is no "@", or if that text has another "@" or no dot.
std::string domain_of_address(std::string_view address);

}  // namespace zrl
