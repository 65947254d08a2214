#pragma once

#include "pages/lists/list_page.h"

namespace zrl {

// The domain black list and white list, where the proxy looks for domains, and tools for the domain
// that is being edited: its mail exchanger, that host's address, and a telnet connection to it. An entry that
// is added to one list leaves the other. The lists hold e-mail addresses too ("with an at sign"), which this
// page leaves out of its boxes.
class DomainPage : public ListPage {
 public:
  explicit DomainPage(Console& console);

  TextField Text1{*this,
                  "Text1",
                  "The domain to add or remove; clicking an entry of a list copies it here",
                  {.placeholder = "example.com"}};
  Label Label1{*this, "Label1", "Domain", Text1};

  Frame Frame1{*this, "Frame1", "White list"};
  ListBox List1{*this, "List1", "Mail from these domains passes; click an entry to edit or remove it"};
  Label Label2{*this, "Label2", "Domains that pass", List1};
  Button Command1{*this, "Command1", "Add",
                  "Puts the domain on the white list and takes it off the black list"};
  Button Command2{*this, "Command2", "Remove", "Takes the domain and its form \"@*\" off the white list"};
  Button imexwhite{*this, "imexwhite", "Import and export...", "Moves the white list from or to a text file"};

  Frame Frame2{*this, "Frame2", "Black list"};
  ListBox List2{*this, "List2", "Mail from these domains is rejected; click an entry to edit or remove it"};
  Label Label3{*this, "Label3", "Domains that are rejected", List2};
  Button Command3{*this, "Command3", "Add",
                  "Puts the domain on the black list and takes it off the white list"};
  Button Command4{*this, "Command4", "Remove", "Takes the domain and its form \"@*\" off the black list"};
  Button imexblack{*this, "imexblack", "Import and export...", "Moves the black list from or to a text file"};

  Button refrall{*this, "refrall", "Refresh", "Reads both lists and all switches again"};
  Button remote{*this, "remote", "Update from server",
                "Fetches the published domain lists and merges them into both lists"};

  Frame Frame3{*this, "Frame3", "Mail exchanger of the domain"};
  TextField mxip{*this, "mxip", "The mail exchanger that was found, as host name or IP number"};
  Label Label4{*this, "Label4", "Mail exchanger", mxip};
  Button findmx{
      *this, "findmx", "Find address",
      "Finds the domain's mail exchanger and its IP number; tries the parent domain if there is none"};
  Button Command6{*this, "Command6", "Find host name",
                  "Finds the domain's mail exchanger with the least preference"};
  Button Command5{*this, "Command5", "Telnet",
                  "Opens a connection to port 25 of the IP number found, or else of the domain"};
  Button blip{*this, "blip", "Blacklist address", "Puts the IP number found on the IP black list"};
  Button wlip{*this, "wlip", "Whitelist address", "Puts the IP number found on the IP white list"};

  Frame Frame4{*this, "Frame4", "Where the lists apply"};
  CheckBox checkbw{*this, "checkbw", "Use the domain lists", "Checks domains against both lists at all"};
  CheckBox RetunPath{*this, "RetunPath", "Return path", "Checks the domain of the sender's return path"};
  CheckBox hcheck{*this, "hcheck", "Message headers", "Checks domains that occur in the headers"};
  CheckBox dcheck{*this, "dcheck", "Message body", "Checks domains that occur in the body"};
  CheckBox checkblhelo{*this, "checkblhelo", "HELO name",
                       "Checks the client's greeting against the black list"};

 private:
  const List white_{List1, list::white_domains, "Domain Whitelist", Entries::without_at};
  const List black_{List2, list::black_domains, "Domain Blacklist", Entries::without_at};

  void fill_lists() override;

  void show_change(const EntryChange& change);

  void find_exchanger_address();
  void find_exchanger_name();
  void say_exchanger(const std::string& found);
  void list_address(bool black);
  void connect_by_telnet();
};

}  // namespace zrl
