#pragma once

#include "core/contracts/check_plugin.h"
#include "pages/lists/list_page.h"

namespace zrl {

// The DNS-based black lists of domains that spam advertises, and a test of a text against them.
class UriListPage : public ListPage {
 public:
  explicit UriListPage(Console& console);

  TextField Text1{*this,
                  "Text1",
                  "The zone to add or remove, as the list's operator names it; clicking an entry of the list "
                  "copies it here. One with an apostrophe is not stored",
                  {.placeholder = "uri.example.com"}};
  Label Label1{*this, "Label1", "DNS zone", Text1};

  Frame Frame1{*this, "Frame1", "URI black lists"};
  ListBox List1{*this, "List1",
                "Mail with a link to a domain that one of these zones lists is rejected; click an entry to "
                "edit or remove it"};
  Label Label2{*this, "Label2", "Zones that list domains of links", List1};
  Button adduri{*this, "adduri", "Add", "Adds the zone to the list"};
  Button removeuri{*this, "removeuri", "Remove", "Takes the zone off the list"};
  Button Command3{*this, "Command3", "Import and export...", "Moves the zones from or to a text file"};

  Frame Frame2{*this, "Frame2", "Where the lists apply"};
  CheckBox enablesurbl{*this, "enablesurbl", "Use the URI block lists",
                       "Looks the links in every message up in all zones"};

  Frame Frame3{*this, "Frame3", "Test"};
  TextField Text2{*this,
                  "Text2",
                  "A message text, plain or HTML, or single links",
                  {.multi_line = true, .placeholder = "http://www.example.com/"}};
  Label Label3{*this, "Label3", "Text with links", Text2};
  Button testit{*this, "testit", "Test",
                "Looks the domains of all links in the text up in all zones; shows which are listed, and "
                "nothing if none is"};
  Label uriresult{*this, "uriresult", ""};

 private:
  void load() override;
  void fill_lists() override;

  void show_change(const EntryChange& change);
  void test();

  const List zones_{List1, list::uri_zones, "URI Realtime Blocklists "};
  Held<CheckPlugin> check_{*this, "URI check", checks::surbl};
};

}  // namespace zrl
