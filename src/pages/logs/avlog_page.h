#pragma once

#include <string_view>

#include "pages/logs/log_page.h"

namespace zrl {

// The log of the messages that were rejected for an attachment: choosing a row lists all senders with the
// same reason, and choosing a sender all clients that sent for it.
class AvlogPage : public LogPage {
 public:
  explicit AvlogPage(Console& console);

  Frame Frame1{*this, "Frame1", "Attachment Logging"};
  ListBox control14{
      *this, "control14",
      "Reason, client, sender and recipient, the newest first; clicking a row lists the senders"};
  Label Label1{*this, "Label1", "Rejected messages", control14};
  Button Command15{*this, "Command15", "Refresh", "Reads the log again"};

  Frame Frame2{*this, "Frame2", "Senders"};
  ListBox from{*this, "from", "The senders logged with the row's reason; clicking one lists its clients"};
  Label Label2{*this, "Label2", "Senders with this reason", from};
  Button Command1{*this, "Command1", "Blacklist all", "Puts every listed sender on the e-mail black list"};
  Button Command2{*this, "Command2", "Whitelist all", "Puts every listed sender on the e-mail white list"};
  Button Command5{*this, "Command5", "Remove all", "Takes every listed sender off both e-mail lists"};
  TextField Text1{*this, "Text1", "The sender that the buttons below act on"};
  Label Label3{*this, "Label3", "Sender", Text1};
  Button Command7{*this, "Command7", "Blacklist", "Puts the sender on the e-mail black list"};
  Button Command8{*this, "Command8", "Whitelist", "Puts the sender on the e-mail white list"};
  Button Command9{*this, "Command9", "Remove", "Takes the sender off both e-mail lists"};
  Button Command13{*this, "Command13", "Clear from Log", "Deletes the chosen sender's rows from the logs"};

  Frame Frame3{*this, "Frame3", "Clients"};
  ListBox ip{*this, "ip", "The clients that sent for the chosen sender"};
  Label Label4{*this, "Label4", "Addresses", ip};
  Button Command3{*this, "Command3", "Blacklist all", "Puts every listed address on the IP black list"};
  Button Command4{*this, "Command4", "Whitelist all", "Puts every listed address on the IP white list"};
  Button Command6{*this, "Command6", "Remove all", "Takes every listed address off both IP lists"};
  TextField Text2{*this, "Text2", "The address that the buttons below act on"};
  Label Label5{*this, "Label5", "IP number", Text2};
  Button Command10{*this, "Command10", "Blacklist", "Puts the address on the IP black list"};
  Button Command11{*this, "Command11", "Whitelist", "Puts the address on the IP white list"};
  Button Command12{*this, "Command12", "Remove", "Takes the address off both IP lists"};
  Button Command14{*this, "Command14", "Clear from Log", "Deletes the chosen address's rows from the logs"};

 private:
  void load() override;

  void refresh_log();
  void click_row();
  void click_sender();

  bool list_sender(std::string_view sender, const ListTable& own, const ListTable& opposite);
  bool unlist_sender(std::string_view sender, const ListTable& first, const ListTable& second);
  void list_all_addresses(IpStatus status);
  void list_one_address(IpStatus status);
  void clear_sender();
  void clear_address();
  void lowercase_mail_lists();

  // Runs the action for each sender that is listed; progress is shown and events run in between.
  // How many of them it worked for.
  std::size_t for_each_sender(const std::function<bool(std::string_view)>& action);

  LogRows rows_;
  bool mail_lists_lower_cased_ = false;
};

}  // namespace zrl
