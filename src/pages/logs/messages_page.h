#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/contracts/list_tables.h"
#include "core/page.h"
#include "core/row_writer.h"
#include "core/table.h"
#include "pages/logs/message_rows.h"

namespace zrl {

// All logs as one table, the newest row first, with what belongs to a row and what can be done about its
// sender. The query that opens it is a filter (docs/messages.md), which may also name the period, the kind
// and the verdict: "period:day verdict:rejected from:example.net".
class MessagesPage : public Page {
 public:
  explicit MessagesPage(Console& console);

  Frame Frame1{*this, "Frame1", "Which messages"};
  ComboBox period{*this, "period", "Rows of the last hour, day, week or month, or all", {.words = true}};
  Label period_label{*this, "period_label", "Period", period};
  TextField since{*this,
                  "since",
                  "Only rows from this day or time on; the period does not count then",
                  {.placeholder = "2026-01-31 08:00"}};
  Label since_label{*this, "since_label", "From", since};
  TextField until{*this,
                  "until",
                  "Only rows up to this day or time; the period does not count then",
                  {.placeholder = "2026-01-31"}};
  Label until_label{*this, "until_label", "To", until};
  ComboBox kind{*this, "kind", "Where the proxy decided", {.words = true}};
  Label kind_label{*this, "kind_label", "Kind", kind};
  ComboBox verdict{*this, "verdict", "What it decided", {.words = true}};
  Label verdict_label{*this, "verdict_label", "Verdict", verdict};
  TextField filter{*this,
                   "filter",
                   "Words that a row contains; from:ann@example.com, from:example.com, to:bob, "
                   "ip:192.0.2.0/24 and reason:word say where",
                   {.placeholder = "from:example.com reason:rbl"}};
  Label filter_label{*this, "filter_label", "Filter", filter};

  Table rows{*this,
             "rows",
             "Messages",
             "",
             {{.name = "time", .caption = "Time", .kind = ColumnKind::time, .sorts = true},
              {.name = "verdict", .caption = "Verdict", .kind = ColumnKind::verdict},
              {.name = "kind", .caption = "Kind", .kind = ColumnKind::word, .minor = true},
              {.name = "address", .caption = "Address", .kind = ColumnKind::address, .page = "lookup"},
              {.name = "sender", .caption = "Sender", .page = "lookup"},
              {.name = "recipient", .caption = "Recipient", .minor = true},
              {.name = "reason", .caption = "Reason"}}};
  MessageRows messages{rows, *this, console()};
  CheckBox follow{*this, "follow", "Follow", "Shows new rows as they are logged"};
  Timer Timer1{*this, "Timer1", 1000, true};

  Button block_sender{*this, "block_sender", "Block sender",
                      "Puts the senders of the chosen rows on the black list"};
  Button allow_sender{*this, "allow_sender", "Allow sender",
                      "Puts the senders of the chosen rows on the white list"};
  Button block_domain{*this, "block_domain", "Block domain",
                      "Puts the domains of the senders of the chosen rows on the black list"};
  Button allow_domain{*this, "allow_domain", "Allow domain",
                      "Puts the domains of the senders of the chosen rows on the white list"};
  Button block_address{*this, "block_address", "Block address",
                       "Puts the addresses of the chosen rows on the black list"};
  Button allow_address{*this, "allow_address", "Allow address",
                       "Puts the addresses of the chosen rows on the white list"};
  Button neutral{*this, "neutral", "Mark neutral",
                 "Takes the addresses of the chosen rows off the lists, and marks their rows as neutral"};
  Button delete_rows{*this, "delete_rows", "Delete rows", "Deletes the chosen rows from the logs"};
  Button look_up{*this, "look_up", "Look up", "Shows where the address stands, or the sender"};
  Button open_mail{*this, "open_mail", "Open mail", "Shows the mail in the archive"};
  Button export_csv{*this, "export_csv", "Export as CSV", "Writes all rows that the filter leaves to a file"};
  Button export_json{*this, "export_json", "Export as JSON lines",
                     "Writes all rows that the filter leaves to a file, an object a line"};

  Table details{*this,
                "details",
                "Chosen row",
                "",
                {{.name = "field", .caption = "Field", .kind = ColumnKind::word},
                 {.name = "value", .caption = "Value"}}};
  HeldRows detail_rows{details};
  Table related{*this,
                "related",
                "Same client and sender, around that time",
                "",
                {{.name = "time", .caption = "Time", .kind = ColumnKind::time},
                 {.name = "verdict", .caption = "Verdict", .kind = ColumnKind::verdict},
                 {.name = "kind", .caption = "Kind", .kind = ColumnKind::word, .minor = true},
                 {.name = "address", .caption = "Address", .kind = ColumnKind::address, .page = "lookup"},
                 {.name = "sender", .caption = "Sender", .page = "lookup"},
                 {.name = "recipient", .caption = "Recipient", .minor = true},
                 {.name = "reason", .caption = "Reason"}}};
  HeldRows related_rows{related};

 private:
  void load() override;
  void open_query(std::string_view query) override;
  void choose();
  void tick();
  MessageRows::Choice choice();
  void show_chosen();
  void show_mail_of(const TableRows& row, TableRows& shown);
  TableRows rows_around(const TableRows& row);
  // The texts of a column of the chosen rows, each once, without empty ones.
  StringList chosen_texts(std::string_view column);
  void change_lists(const ListTable& list, const StringList& entries);
  StringList chosen_domains();
  void mark_neutral();
  void delete_chosen();
  void look_up_chosen();
  void export_rows(RowFormat format);

  std::int64_t mail_ = 0;  // in the archive; 0 if there is none
};

}  // namespace zrl
