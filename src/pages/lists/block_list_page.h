#pragma once

#include "core/contracts/block_lists.h"
#include "pages/lists/list_page.h"

namespace zrl {

// The DNS-based white and black lists (RFC 5782) that the proxy asks about clients and senders, a test of all
// of them, and a report of the clients that were rejected. The test blocks until all zones have answered or
// the look-up's time-out has come; events are served meanwhile.
class BlockListPage : public ListPage {
 public:
  explicit BlockListPage(Console& console);

  TextField Text1{*this,
                  "Text1",
                  "The zone to add or remove, as the list's operator names it; clicking an entry of a list "
                  "copies it here. One with an apostrophe is not stored",
                  {.placeholder = "bl.example.com"}};
  Label Label1{*this, "Label1", "DNS zone", Text1};

  Frame Frame1{*this, "Frame1", "White lists"};
  ListBox List1{
      *this, "List1",
      "Clients and senders that one of these zones lists pass; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Zones that let pass", List1};
  Button wbladd{*this, "wbladd", "Add", "Adds the zone to the white lists"};
  Button wblremove{*this, "wblremove", "Remove", "Takes the zone off the white lists"};
  Button oben{*this, "oben", "Import and export...",
              "Moves the zones of the white lists from or to a text file"};

  Frame Frame2{*this, "Frame2", "Black lists"};
  ListBox List2{
      *this, "List2",
      "Clients and senders that one of these zones lists are rejected; click an entry to edit or remove it"};
  Label Label4{*this, "Label4", "Zones that reject", List2};
  Button rbladd{*this, "rbladd", "Add", "Adds the zone to the black lists"};
  Button rblremove{*this, "rblremove", "Remove", "Takes the zone off the black lists"};
  Button unten{*this, "unten", "Import and export...",
               "Moves the zones of the black lists from or to a text file"};

  Frame Frame3{*this, "Frame3", "Where the lists apply"};
  CheckBox RBLcheck1{*this, "RBLcheck1", "Use the DNS block lists",
                     "Asks the zones of both lists about every client and every sender"};

  Frame Frame4{*this, "Frame4", "Test"};
  TextField Text2{*this,
                  "Text2",
                  "What to look up in all zones: the IP number of a client, or the domain of a sender",
                  {.placeholder = "192.0.2.1"}};
  Label Label5{*this, "Label5", "IP number or domain", Text2};
  Button Command1{*this, "Command1", "Test",
                  "Asks all zones, the white lists first; shows the first zone that lists it"};
  Label Label3{*this, "Label3", ""};

  Frame Frame5{*this, "Frame5", "Rejected clients"};
  Button Command2{*this, "Command2", "Report them...",
                  "Opens a mail to the operator of the default black list with the IP numbers of all "
                  "blacklisted clients in the IP log"};

 private:
  void load() override;
  void fill_lists() override;

  void show_change(const EntryChange& change);
  void test();
  // The outcome in the user's language, to be shown after the text that was tested.
  std::string verdict(BlockLists::Listing listing, const std::string& zone);
  void report_relays();

  const List white_{List1, list::white_zones, "Remote Whitelist"};
  const List black_{List2, list::black_zones, "Remote Blacklist"};
  Held<BlockLists> block_lists_{*this, "block-list component"};
};

}  // namespace zrl
