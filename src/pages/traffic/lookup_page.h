#pragma once

#include "core/contracts/block_lists.h"
#include "core/entry_notes.h"
#include "core/list_changes.h"
#include "core/page.h"
#include "core/table.h"
#include "pages/traffic/subject_log.h"
#include "pages/traffic/verdict.h"

namespace zrl {

// Where an address, a network, a domain, an e-mail address or a word stands: what the lists say of it, in a
// sentence and entry by entry, what the logs know, and what the DNS says if it is asked. Puts it on any list,
// takes entries off, and notes why they are there. A query fills the page and reads; only the buttons write.
class LookupPage : public Page {
 public:
  explicit LookupPage(Console& console);

  TextField what{*this,
                 "what",
                 "An IP number, a network, a domain or host name, an e-mail address, a link, or any words",
                 {.placeholder = "198.51.100.7"}};
  Label what_label{*this, "what_label", "Look up", what};
  Button look{*this, "look", "Look up", "Finds every entry that touches it, and what the logs know of it"};
  Label verdict{*this, "verdict", ""};

  Table entries{
      *this,
      "entries",
      "Entries",
      "What touches it in all lists; choose entries to remove them or to note why they are there",
      {{.name = "title", .caption = "List", .sorts = true},
       {.name = "list", .caption = "Name of the list", .sorts = true, .minor = true},
       {.name = "entry", .caption = "Entry", .sorts = true},
       {.name = "match", .caption = "Match", .sorts = true},
       {.name = "effective", .caption = "In effect", .sorts = true},
       {.name = "comment", .caption = "Comment", .sorts = true},
       {.name = "author", .caption = "Author", .sorts = true, .minor = true},
       {.name = "added", .caption = "Added", .kind = ColumnKind::time, .sorts = true, .minor = true},
       {.name = "expires", .caption = "Expires", .sorts = true},
       {.name = "hits", .caption = "Hits in 30 days", .kind = ColumnKind::number, .sorts = true}}};

  Frame change_frame{*this, "change_frame", "Change the lists"};
  ComboBox list{*this,
                "list",
                "The list that it is added to or removed from; a name such as domains.black will do",
                {.editable = true}};
  Label list_label{*this, "list_label", "List", list};
  TextField comment{*this, "comment", "Why the entry is there"};
  Label comment_label{*this, "comment_label", "Comment", comment};
  TextField expires{*this,
                    "expires",
                    "The last day on which the entry holds, or in how many days that is; empty: for good",
                    {.placeholder = "30d"}};
  Label expires_label{*this, "expires_label", "Expires", expires};
  Button add{*this, "add", "Add to list", "Puts what was looked up on the list, with comment and expiry"};
  Button remove{
      *this, "remove", "Remove from list",
      "Takes the entries that are chosen off their lists; if none is, takes what was looked up off the list"};
  Button save_note{
      *this, "save_note", "Save note",
      "Keeps comment and expiry of the entries that are chosen, or of what was looked up on the list"};

  Table counts{*this,
               "counts",
               "Log rows",
               "How many rows of the logs there are of it",
               {{.name = "period", .caption = "Period"},
                {.name = "rejected", .caption = "Rejected", .kind = ColumnKind::number},
                {.name = "allowed", .caption = "Allowed", .kind = ColumnKind::number},
                {.name = "neutral", .caption = "Neutral", .kind = ColumnKind::number}}};
  Table log{
      *this,
      "log",
      "Last log rows",
      "The newest rows of the logs with this IP number or sender",
      {{.name = "time", .caption = "Time", .kind = ColumnKind::time, .sorts = true},
       {.name = "verdict", .caption = "Verdict", .kind = ColumnKind::verdict, .sorts = true},
       {.name = "kind", .caption = "Kind", .sorts = true},
       {.name = "address", .caption = "Client", .kind = ColumnKind::address, .sorts = true, .page = "lookup"},
       {.name = "sender", .caption = "Sender", .sorts = true, .page = "lookup"},
       {.name = "recipient", .caption = "Recipient", .sorts = true, .minor = true},
       {.name = "reason", .caption = "Reason", .sorts = true}}};
  Link messages{*this, "messages", "Show it in the messages",
                "All rows of the logs that have to do with it, in the page of all logs"};
  Button ask_dns{
      *this, "ask_dns", "Ask the DNS",
      "Looks up addresses, mail exchangers, the host name, the SPF record and the DNS block lists"};
  Table dns{*this,
            "dns",
            "DNS",
            "What the DNS says of it now",
            {{.name = "kind", .caption = "Kind"}, {.name = "value", .caption = "Value"}}};

 private:
  void load() override;
  void open_query(std::string_view query) override;

  void look_up();
  void show_entries();
  void show_log();
  void choose_entry();
  // Another subject's entry does not take over the note of the one that was chosen, unless it was edited.
  void clear_shown_note();
  void ask_dns_servers();
  void ask_address(const std::string& address, TableRows& answers);
  void ask_domain(const std::string& domain, TableRows& answers);
  void ask_block_lists(const MessageContext& context, std::string_view position, TableRows& answers);

  // What the buttons work on.
  struct Target {
    const KnownList* list;
    std::string entry;
  };
  std::vector<Target> targets();
  const KnownList* named_list();  // null if the text names none
  // The note that the two fields make; nothing if they make none, which is told.
  std::optional<EntryNote> typed_note();
  void add_subject();
  void remove_targets();
  void save_notes();
  // Shows what became of an act in place of the verdict, as a complaint.
  void complain(std::string_view pattern, std::string_view reason);

  HeldRows entry_rows_{entries};
  HeldRows count_rows_{counts};
  HeldRows log_rows_{log};
  HeldRows dns_rows_{dns};
  Held<DnsClient> dns_client_{*this, "DNS component"};
  Held<BlockLists> block_lists_{*this, "block-list component"};
  Subject subject_;
  ListFindings findings_;
  EntryNote shown_note_;       // what the chosen entry has put into the fields
  bool list_is_usual_ = true;  // nobody has chosen another one
};

}  // namespace zrl
