#pragma once

#include <memory>

#include "pages/lists/list_page.h"

namespace zrl {

// The IP black list and white list, the checks of IP numbers, and a reverse look-up whose answer can
// be put on the domain lists. The proxy needs no reload flag for IP numbers.
class IpPage : public ListPage {
 public:
  explicit IpPage(Console& console);

  TextField ip{*this,
               "ip",
               "The IP number to add or remove; clicking an entry of a list copies it here",
               {.placeholder = "192.0.2.1"}};
  Label Label1{*this, "Label1", "IP number", ip};

  Frame Frame1{*this, "Frame1", "White list"};
  ListBox whitel{*this, "whitel", "Mail from these IP numbers passes; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "IP numbers that pass", whitel};
  Button Command1{*this, "Command1", "Add",
                  "Puts the IP number on the white list and takes it off the black list"};
  Button imleft{*this, "imleft", "Import and export...", "Moves the white list from or to a text file"};

  Frame Frame2{*this, "Frame2", "Black list"};
  ListBox blackl{*this, "blackl",
                 "Mail from these IP numbers is rejected; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "IP numbers that are rejected", blackl};
  Button Command3{*this, "Command3", "Add",
                  "Puts the IP number on the black list and takes it off the white list"};
  Button imright{*this, "imright", "Import and export...", "Moves the black list from or to a text file"};

  Button Command2{*this, "Command2", "Remove", "Takes the IP number off whichever list holds it"};
  Button refrall{*this, "refrall", "Refresh", "Reads both lists and all switches again"};
  Button remote{*this, "remote", "Update from server",
                "Fetches the published IP lists and merges them into both lists"};

  Frame Frame3{*this, "Frame3", "Host name of the IP number"};
  TextField domain{*this, "domain",
                   "A domain for the domain lists; finding the host name of the IP number fills it in"};
  Label Label4{*this, "Label4", "Domain", domain};
  Button rlookup{*this, "rlookup", "Find host name",
                 "Looks up the host name of the IP number (PTR record) and puts it into the domain field"};
  Button adbl{*this, "adbl", "Blacklist domain",
              "Puts the domain on the domain black list and takes it off the domain white list"};
  Button adwl{*this, "adwl", "Whitelist domain",
              "Puts the domain on the domain white list and takes it off the domain black list"};

  Frame Frame4{*this, "Frame4", "Where the lists apply"};
  CheckBox Check1{*this, "Check1", "Use the IP lists", "Checks the connecting IP number against both lists"};
  CheckBox hcheck{*this, "hcheck", "Message headers", "Checks IP numbers that occur in the headers"};
  CheckBox bcheck{*this, "bcheck", "Message body", "Checks IP numbers that occur in the body"};
  CheckBox autobl{*this, "autobl", "Blacklist automatically",
                  "Lets the proxy blacklist by what it finds in the headers; switches the blocking of "
                  "non-delivery reports off"};
  CheckBox acreject{*this, "acreject", "Reject actively", "Actively rejects senders on the black list"};

  Frame Frame5{*this, "Frame5", "Host name of the client"};
  CheckBox checkempty{*this, "checkempty", "Require a host name",
                      "Refuses clients whose IP number has no host name (PTR record)"};
  CheckBox blr{*this, "blr", "Use the domain black list",
               "Checks the host name of the client against the domain black list"};
  CheckBox wlr{*this, "wlr", "Use the domain white list",
               "Checks the host name of the client against the domain white list"};

 private:
  void load() override;
  void fill_lists() override;

  void show_change(const EntryChange& change);
  void click_autobl();
  void find_host_name();
  void list_domain(const ListTable& own, const ListTable& other);

  const List black_{blackl, list::black_addresses, "IP Blacklist"};
  const List white_{whitel, list::white_addresses, "IP Whitelist"};
  Held<DnsClient> dns_{*this, "DNS component"};
};

}  // namespace zrl
