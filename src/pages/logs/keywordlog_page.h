#pragma once

#include <set>
#include <string>
#include <string_view>

#include "pages/logs/log_page.h"

namespace zrl {

// The log of the messages in which a listed keyword was found, and what can be done about the
// keyword, the sender, its domain and the client of one of them.
class KeywordlogPage : public LogPage {
 public:
  explicit KeywordlogPage(Console& console);

  Frame Frame1{*this, "Frame1", "Keyword Logging"};
  OptionButton subject{*this, "subject", "Subject", "Messages with a keyword in their subject"};
  OptionButton body{*this, "body", "Body", "Messages with a keyword in their body"};
  ListBox logs{*this, "logs",
               "Keyword, client, sender and recipient, the newest first; clicking a row fills the fields"};
  Label Label1{*this, "Label1", "Rejected or marked messages", logs};
  Button Command13{*this, "Command13", "Refresh", "Reads the log again"};
  Button Command11{*this, "Command11", "Clear all", "Deletes all rows of this log"};

  Frame Frame2{*this, "Frame2", "Keyword"};
  TextField keyw{*this, "keyw", "The keyword that matched"};
  Label Label2{*this, "Label2", "Keyword:", keyw};
  Button Command1{*this, "Command1", "Remove Keyword",
                  "Takes the keyword off its list and deletes its rows from this log"};

  Frame Frame3{*this, "Frame3", "Sender"};
  TextField mfrom{*this, "mfrom", "The sender of the envelope"};
  Label Label3{*this, "Label3", "Mail From:", mfrom};
  Button Command2{*this, "Command2", "Blacklist",
                  "Puts the address on the e-mail black list and deletes its rows"};
  Button Command3{*this, "Command3", "Whitelist",
                  "Puts the address on the e-mail white list and deletes its rows"};
  TextField rto{*this, "rto", "The recipient of the envelope"};
  Label Label4{*this, "Label4", "RCPT To:", rto};
  TextField dfrom{*this, "dfrom", "The domain of the sender"};
  Label Label5{*this, "Label5", "Domain From:", dfrom};
  Button Command4{*this, "Command4", "Blacklist",
                  "Puts the domain on the black list and deletes the sender's rows"};
  Button Command5{*this, "Command5", "Whitelist",
                  "Puts the domain on the white list and deletes the sender's rows"};

  Frame Frame4{*this, "Frame4", "Client"};
  TextField ip{*this, "ip", "The address of the client that sent the message"};
  Label Label6{*this, "Label6", "IPNumber:", ip};
  Button Command6{*this, "Command6", "Blacklist",
                  "Puts the address on the IP black list and deletes its rows"};
  Button Command7{*this, "Command7", "Whitelist",
                  "Puts the address on the IP white list and deletes its rows"};
  Button Command8{*this, "Command8", "Reverse Lookup", "Finds the host name of the client"};
  Button Command12{*this, "Command12", "Telnet",
                   "Opens a connection to port 25 of the client, or else of the host"};
  TextField shost{*this, "shost", "The host name of the client, as the look-up finds it or as you type it"};
  Label Label7{*this, "Label7", "Sender Host:", shost};
  Button Command9{*this, "Command9", "Blacklist",
                  "Puts the host on the domain black list and deletes the sender's rows"};
  Button Command10{
      *this, "Command10", "Whitelist",
      "Puts the host on the domain white list and deletes the sender's rows; free again after a look-up"};

 private:
  void show() override;
  void load() override { refresh_log(); }

  void refresh_log();
  void click_row();
  Literal log_table() const { return body.chosen() ? Literal("bodylog") : Literal("subjectlog"); }

  void declare_losses();
  void remove_keyword();
  void list_sender(const ListTable& own, const ListTable& opposite);
  void list_domain(std::string_view domain, const ListTable& own, const ListTable& opposite);
  void list_client(IpStatus status);
  // Deletes the log rows of the sender; those of nobody are not one sender's, so without one only the row in
  // view is deleted.
  void forget_sender();
  void whitelist_host();
  void look_up_host();
  void clear_log();
  void telnet();

  // Converts the list's entries to lower case, at most once each time the page is shown.
  void lower_case_once(const ListTable& list);

  LogRows rows_;
  std::set<std::string_view> lower_cased_;
  Held<DnsClient> dns_{*this, "DNS component"};
};

}  // namespace zrl
