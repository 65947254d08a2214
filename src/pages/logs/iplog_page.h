#pragma once

#include "pages/logs/log_page.h"

namespace zrl {

// The log of the addresses that connected to the proxy, and what can be done about one of them.
class IplogPage : public LogPage {
 public:
  explicit IplogPage(Console& console);

  Frame Frame1{*this, "Frame1", "IP Logging"};
  Button ipall{*this, "ipall", "Show all", "Lists every address that was logged"};
  Button ipneutral{*this, "ipneutral", "Show neutral IPs", "Lists the addresses that are on no list"};
  Button ipblack{*this, "ipblack", "Show blacklisted IPs",
                 "Lists the addresses whose connections are rejected"};
  Button ipwhite{*this, "ipwhite", "Show whitelisted IPs", "Lists the addresses that are on the white list"};
  ListBox iplist{*this, "iplist",
                 "One line a connection, the newest last; clicking one puts its address into the field"};
  Label Label9{*this, "Label9", "Logged addresses", iplist};
  Button Command9{*this, "Command9", "Clear List", "Deletes the rows of the current view from this log"};

  Frame Frame2{*this, "Frame2", "Statistic"};
  Label Label1{*this, "Label1", "Neutral:"};
  Label Label5{*this, "Label5", ""};
  Label Label2{*this, "Label2", "Rejected:"};
  Label Label6{*this, "Label6", ""};
  Label Label3{*this, "Label3", "Whitelisted:"};
  Label Label7{*this, "Label7", ""};
  Label Label4{*this, "Label4", "Total:"};
  Label Label8{*this, "Label8", ""};

  Frame Frame3{*this, "Frame3", "IP Lists"};
  TextField IPNumber{
      *this, "IPNumber", "The address that the buttons below act on", {.placeholder = "192.0.2.1"}};
  Label Label10{*this, "Label10", "IP number", IPNumber};
  Button Command1{*this, "Command1", "Delete from Lists",
                  "Takes the address off both IP lists and marks it neutral"};
  Button Command2{*this, "Command2", "Add to Blacklist",
                  "Puts the address on the IP black list and marks it rejected"};
  Button Command3{*this, "Command3", "Add to Whitelist",
                  "Puts the address on the IP white list and marks it white"};
  Button Command7{*this, "Command7", "Telnet", "Opens a connection to port 25 of the address"};
  Button delefrom{*this, "delefrom", "Delete from log", "Deletes the address from every log; the lists stay"};

  Frame Frame4{*this, "Frame4", "Domain Lists"};
  TextField domain{*this,
                   "domain",
                   "A host name or domain, as the look-up finds it or as you type it",
                   {.placeholder = "example.com"}};
  Label Label11{*this, "Label11", "Domain", domain};
  Button reverse{*this, "reverse", "Reverse lookup IP",
                 "Finds the host name of the address chosen in the list"};
  Button Command4{*this, "Command4", "Delete from Lists", "Takes the domain off both domain lists"};
  Button Command5{*this, "Command5", "Add to Blacklist",
                  "Puts the domain on the black list and takes it off the white list"};
  Button Command6{*this, "Command6", "Add to Whitelist",
                  "Puts the domain on the white list and takes it off the black list"};
  Button Command8{*this, "Command8", "Telnet", "Opens a connection to port 25 of the domain"};

 private:
  void show() override;
  void load() override;

  void refresh_log();
  void choose_view(Literal condition);
  void click_address();
  void change_status(IpStatus status);
  void look_up_host_name();
  void delete_from_logs();
  void clear_list();

  Literal status_filter_ = "";  // the condition of the view; empty for all rows
  std::int64_t selected_index_ = -1;
  Held<DnsClient> dns_{*this, "DNS component"};
};

}  // namespace zrl
