#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The domains and the addresses that are exempt from filtering. One text field serves both lists: a
// text with an at sign is an address, any other a domain. No reload flag is raised for them.
class ExceptionPage : public ListPage {
 public:
  explicit ExceptionPage(Console& console);

  TextField Text1{*this,
                  "Text1",
                  "The domain or the address to add or remove; clicking an entry of a list copies it here. A "
                  "text with an at sign is an address; one with an apostrophe is not stored",
                  {.placeholder = "example.com"}};
  Label Label1{*this, "Label1", "Domain or e-mail address", Text1};
  Button addex{*this, "addex", "Add",
               "Puts an address on the list of addresses, a domain on that of domains"};
  Button removeex{*this, "removeex", "Remove",
                  "Takes an address off the list of addresses, a domain off that of domains"};

  Frame Frame1{*this, "Frame1", "Domains"};
  ListBox exceptdomains{*this, "exceptdomains",
                        "Mail from or to these domains is not filtered; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Domains that are not filtered", exceptdomains};
  Button imleft{*this, "imleft", "Import and export...", "Moves the list of domains from or to a text file"};

  Frame Frame2{*this, "Frame2", "E-mail addresses"};
  ListBox exceptmails{*this, "exceptmails",
                      "Mail from or to these addresses is not filtered; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "Addresses that are not filtered", exceptmails};
  Button imright{*this, "imright", "Import and export...",
                 "Moves the list of addresses from or to a text file"};

  Button Command1{*this, "Command1", "Refresh", "Reads both lists and all switches again"};

  Frame Frame3{*this, "Frame3", "Which exceptions apply"};
  CheckBox exceptdomain{*this, "exceptdomain", "Use the domain exceptions",
                        "Exempts the listed domains from filtering"};
  CheckBox exceptmail{*this, "exceptmail", "Use the address exceptions",
                      "Exempts the listed addresses from filtering"};

 private:
  const List domains_{exceptdomains, list::exempt_domains, "Domain Exception List"};
  const List mails_{exceptmails, list::exempt_mails, "eMail Exception List"};

  void fill_lists() override;

  const List& own_list() const;
  void add_text();
  void remove_text();
};

}  // namespace zrl
