#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The black list and white list of networks in prefix notation (RFC 4632), "192.0.2.0/24". The proxy
// needs no reload flag for them.
class SubnetPage : public ListPage {
 public:
  explicit SubnetPage(Console& console);

  TextField subin{*this,
                  "subin",
                  "The network to add or remove: an IP number, a slash, and a prefix length from 1 to 32; "
                  "clicking an entry of a list copies it here",
                  {.placeholder = "192.0.2.0/24"}};
  Label Label1{*this, "Label1", "Network", subin};

  Frame Frame1{*this, "Frame1", "White list"};
  ListBox whitesub{*this, "whitesub", "Mail from these networks passes; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Networks that pass", whitesub};
  Button addwhite{*this, "addwhite", "Add",
                  "Puts the network on the white list and takes it off the black list"};
  Button imleft{*this, "imleft", "Import and export...", "Moves the white list from or to a text file"};

  Frame Frame2{*this, "Frame2", "Black list"};
  ListBox blacksub{*this, "blacksub",
                   "Mail from these networks is rejected; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "Networks that are rejected", blacksub};
  Button addblack{*this, "addblack", "Add",
                  "Puts the network on the black list and takes it off the white list"};
  Button imright{*this, "imright", "Import and export...", "Moves the black list from or to a text file"};

  Button removeit{*this, "removeit", "Remove", "Takes the network off both lists"};

  Frame Frame3{*this, "Frame3", "Where the lists apply"};
  CheckBox subnetcheck{*this, "subnetcheck", "Use the subnet lists",
                       "Checks the networks of connecting IP numbers against both lists"};

 private:
  const List white_{whitesub, list::white_subnets, "Subnet Whitelist"};
  const List black_{blacksub, list::black_subnets, "Subnet Blacklist"};

  void fill_lists() override;

  void add_network(const List& list);
  void remove_network();
};

}  // namespace zrl
