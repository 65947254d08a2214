#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// What is local: the domains and IP numbers that the proxy works for. One entry field serves both
// lists. The proxy needs no reload flag for them.
class LocalPage : public ListPage {
 public:
  explicit LocalPage(Console& console);

  TextField Text1{*this,
                  "Text1",
                  "The domain or IP number to add or remove; clicking an entry of a list copies it here",
                  {.placeholder = "example.com"}};
  Label Label1{*this, "Label1", "Domain or IP number", Text1};

  Frame Frame1{*this, "Frame1", "Local domains"};
  ListBox List1{*this, "List1", "The domains that receive mail here; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Domains that are local", List1};
  Button imleft{*this, "imleft", "Import and export...",
                "Moves the list of local domains from or to a text file"};

  Frame Frame2{*this, "Frame2", "Local IP numbers"};
  ListBox List2{*this, "List2", "The machines of your own network; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "IP numbers that are local", List2};
  Button imright{*this, "imright", "Import and export...",
                 "Moves the list of local IP numbers from or to a text file"};

  Button Command1{*this, "Command1", "Add",
                  "Puts an IP number on the list of IP numbers, anything else on the list of domains"};
  Button Command2{*this, "Command2", "Remove", "Takes the entry off whichever list holds it"};
  Button Command3{*this, "Command3", "Refresh",
                  "Empties the entry field and reads both lists and all switches again"};

  Frame Frame3{*this, "Frame3", "Relaying and forgery"};
  CheckBox acheck{*this, "acheck", "Refuse relaying",
                  "Refuses to pass mail of senders who are not local on to other domains"};
  CheckBox checklocalhelo{*this, "checklocalhelo", "Check local HELO names",
                          "Checks clients that greet with a local domain or IP number"};
  CheckBox nofakedom{*this, "nofakedom", "Protect local domains",
                     "Refuses senders from outside who claim a local domain"};

 private:
  const List domains_{List1, list::local_domains, "Local Domain list"};
  const List addresses_{List2, list::local_addresses, "Local IP list"};

  void fill_lists() override;

  void add_text();
  void remove_text();
};

}  // namespace zrl
