#pragma once

#include <functional>

#include "pages/logs/log_page.h"

namespace zrl {

// The proxy's decisions before the data of a message (before DATA, RFC 5321), grouped by their reason: choose
// a view and a reason, and change the status of the addresses that were logged with it.
class PredatalogPage : public LogPage {
 public:
  explicit PredatalogPage(Console& console);

  Frame Frame1{*this, "Frame1", "View"};
  OptionButton blacklist{*this, "blacklist", "Show blacklisted entries",
                         "Decisions that rejected the client"};
  OptionButton whitelist{*this, "whitelist", "Show whitelisted entries",
                         "Decisions that let the client pass"};
  OptionButton showall{*this, "showall", "Show all"};

  Frame Frame2{*this, "Frame2", "Header Logs"};
  ListBox reason{*this, "reason", "Why the proxy decided so; clicking a reason lists its addresses"};
  Label Label1{*this, "Label1", "Reasons", reason};
  TextField rtext{*this, "rtext", "The reason whose log rows the buttons below change or delete"};
  Label Label2{*this, "Label2", "Reason", rtext};
  Button cchange{*this, "cchange", "Neutral IP's below",
                 "Changes the status of the reason's rows and of all listed addresses, and their IP lists"};
  Button Command2{*this, "Command2", "Delete these logs",
                  "Deletes every log row of the listed addresses and of the reason"};
  Button Command1{*this, "Command1", "Delete Logs", "Deletes the rows of the current view from this log"};

  Frame Frame3{*this, "Frame3", "Addresses logged with the reason"};
  ListBox ip{*this, "ip", "Clicking an address puts it into the field"};
  Label Label3{*this, "Label3", "Addresses", ip};
  Label ipcount{*this, "ipcount", ""};
  TextField IPNumber{
      *this, "IPNumber", "The address that the buttons below act on", {.placeholder = "192.0.2.1"}};
  Label Label7{*this, "Label7", "IP number", IPNumber};
  Button ipaction{*this, "ipaction", "Neutral",
                  "Changes the status of this address in both logs, and its IP list"};
  Button delip{*this, "delip", "Delete IP from logs", "Deletes the address from every log; the lists stay"};
  Button Command3{*this, "Command3", "Reverse lookup IP ->", "Finds the host name of the address"};

  Frame Frame4{*this, "Frame4", "Domain Lists"};
  TextField reversedom{*this,
                       "reversedom",
                       "A host name or domain, as the look-up finds it or as you type it",
                       {.placeholder = "example.com"}};
  Label Label8{*this, "Label8", "Domain", reversedom};
  Button Command4{*this, "Command4", "Blacklist",
                  "Puts the domain on the black list and takes it off the white list"};
  Button Command5{*this, "Command5", "Whitelist",
                  "Puts the domain on the white list and takes it off the black list"};
  Button Command6{*this, "Command6", "Remove from lists", "Takes the domain off both domain lists"};
  Button Command7{*this, "Command7", "Telnet",
                  "Opens a connection to port 25 of the address, or else of the domain"};

  Frame Frame5{*this, "Frame5", "Statistics"};
  Label Label9{*this, "Label9", "Whitelisted:"};
  Label Label4{*this, "Label4", ""};
  Label Label10{*this, "Label10", "Blacklisted:"};
  Label Label5{*this, "Label5", ""};
  Label Label11{*this, "Label11", "Neutral:"};
  Label Label6{*this, "Label6", ""};

 private:
  // What a view shows, and what its two change buttons do. Both set the same status, but put the address on
  // opposite lists.
  struct View {
    Literal condition;
    std::string_view change_all;
    std::string_view change_one;
    IpStatus status;        // written by both
    IpStatus list_for_all;  // the lists that each moves the address to
    IpStatus list_for_one;
  };
  const View& view() const;

  void show() override;
  void load() override;

  void refresh_reasons();
  // Marks the reason that the buttons act on, wherever it stands now; none if the view lacks it.
  void mark_reason();
  void refresh_addresses();
  void refresh();

  void declare_losses();
  void choose_view();
  void click_reason();
  void change_all();
  void change_address();
  void delete_view();
  void delete_listed();
  void delete_address();
  void look_up_host_name();
  void telnet();

  // Runs the action for each address listed at the start; progress is shown and events run in between.
  void for_each_address(const std::function<void(std::string_view)>& action);

  Statement reason_filter_;  // the condition of the address list; each rebuild consumes it
  std::int64_t selected_ip_index_ = -1;
  std::uint64_t address_builds_ = 0;
  Held<DnsClient> dns_{*this, "DNS component"};
};

}  // namespace zrl
