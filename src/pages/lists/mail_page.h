#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The black list and the white list of single sender addresses. An address that is added leaves the
// other list, and its domain leaves the opposite domain list.
class MailPage : public ListPage {
 public:
  explicit MailPage(Console& console);

  TextField mail{*this,
                 "mail",
                 "The address to add or remove; clicking an entry of a list copies it here. It is kept in "
                 "lower case; without an at sign, or with an apostrophe, it is not stored",
                 {.placeholder = "someone@example.com"}};
  Label Label1{*this, "Label1", "E-mail address", mail};

  Frame Frame1{*this, "Frame1", "White list"};
  ListBox whitel{*this, "whitel", "Mail from these addresses passes; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Addresses that pass", whitel};
  Button addwhite{*this, "addwhite", "Add",
                  "Puts the address on the white list, takes it off the black list and its domain off the "
                  "black list of domains"};
  Button imright{*this, "imright", "Import and export...", "Moves the white list from or to a text file"};

  Frame Frame2{*this, "Frame2", "Black list"};
  ListBox blackl{*this, "blackl",
                 "Mail from these addresses is rejected; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "Addresses that are rejected", blackl};
  Button addblack{*this, "addblack", "Add",
                  "Puts the address on the black list, takes it off the white list and its domain off the "
                  "white list of domains"};
  Button imleft{*this, "imleft", "Import and export...", "Moves the black list from or to a text file"};

  Button remove{*this, "remove", "Remove from both lists",
                "Takes the address off the white list and off the black list"};
  Button remotelist{*this, "remotelist", "Update from server",
                    "Fetches the published black list of addresses and merges it into the black list"};

  Frame Frame3{*this, "Frame3", "Where the lists apply"};
  CheckBox checkmail{*this, "checkmail", "Sender addresses",
                     "Checks the sender's address against both lists"};

  // Takes the address in `mail` off the list of local users. No control of the page does this.
  void remove_local_user();

 private:
  const List white_{whitel, list::white_mails, "eMail Whitelist", Entries::with_at};
  const List black_{blackl, list::black_mails, "eMail Blacklist", Entries::with_at};

  void load() override;
  void fill_lists() override;

  void add_address(const List& list);
  void remove_address();
};

}  // namespace zrl
