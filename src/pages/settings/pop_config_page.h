#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "core/page.h"

namespace zrl {

// The POP3 mailboxes (RFC 1939) that the service collects mail from: each is a row of the table `pop3`, named
// "user,server". Settings that the service cannot use are stored as empty texts.
class PopConfigPage : public Page {
 public:
  explicit PopConfigPage(Console& console);

  Frame Frame1{*this, "Frame1", "Collecting mail"};
  CheckBox enable_pop3{*this, "enable_pop3", "Collect mail from POP3 mailboxes",
                       "Lets the service fetch and filter the mail of all accounts below"};
  TextField poptime{*this, "poptime", "Minutes from one collection to the next; a whole number"};
  Label Label1{*this, "Label1", "Interval in minutes", poptime};
  Button setpoptime{*this, "setpoptime", "Save interval",
                    "Stores the interval; what is no whole number is not stored"};

  Frame Frame2{*this, "Frame2", "Accounts"};
  ListBox userlist{*this, "userlist", "User name and server of each mailbox; click one to edit or delete it"};
  Label Label2{*this, "Label2", "Mailboxes", userlist};
  Button clearnew{*this, "clearnew", "New account", "Empties the form for another account"};
  Button deletea{*this, "deletea", "Delete account",
                 "Deletes the account whose user name and server stand in the form"};

  Frame Frame3{*this, "Frame3", "Mailbox"};
  TextField username{
      *this, "username",
      "The name that the mailbox is opened with. With the server it names the account: another "
      "name makes another account"};
  Label Label3{*this, "Label3", "User name", username};
  TextField server{*this, "server", "The POP3 server's name or IP number"};
  Label Label4{*this, "Label4", "Server", server};
  TextField password{
      *this,
      "password",
      "The password of the mailbox; it is stored as it is typed. It is not stored with an apostrophe",
      {.secret = true}};
  Label Label5{*this, "Label5", "Password", password};
  TextField maxsize{*this, "maxsize",
                    "A limit for the size of a mail, in the unit of the service; a whole number. Left empty, "
                    "the stored limit stays"};
  Label Label6{*this, "Label6", "Size limit", maxsize};
  CheckBox leave{*this, "leave", "Leave mail on the server", "Keeps collected mail in the mailbox"};
  CheckBox scan{*this, "scan", "Check for spam", "Runs the service's checks on collected mail"};

  Frame Frame4{*this, "Frame4", "Delivery of clean mail"};
  TextField subm{*this, "subm",
                 "The folder into which mail is put for delivery, with its drive (D:\\pickup). A folder "
                 "without a colon is stored as empty"};
  Label Label7{*this, "Label7", "Pick-up folder", subm};
  TextField forward{*this, "forward",
                    "The address that mail is forwarded to; without an at sign it is stored as empty"};
  Label Label8{*this, "Label8", "Forward to", forward};

  Frame Frame5{*this, "Frame5", "Spam"};
  CheckBox tagging{*this, "tagging", "Mark the subject", "Puts [SPAM] into the subject of spam"};
  CheckBox subjectdelete{*this, "subjectdelete", "Delete by subject",
                         "Deletes mail whose subject the checks refuse"};
  CheckBox spamtobadmail{*this, "spamtobadmail", "Move spam to the folder for spam",
                         "Puts spam into the folder below instead of delivering it"};
  TextField spamforward{*this, "spamforward",
                        "The address that spam is sent to; without an at sign it is stored as empty"};
  Label Label9{*this, "Label9", "Forward spam to", spamforward};
  TextField badmail{*this, "badmail",
                    "The folder for spam: with its drive (D:\\spam) or on the network (\\\\server\\spam). "
                    "Any other form is stored as empty"};
  Label Label10{*this, "Label10", "Folder for spam", badmail};

  Button addmod{*this, "addmod", "Save account",
                "Adds the account, or changes it if there is one of this user name and server"};

 private:
  void load() override;
  void load_interval();
  void fill_list();

  // The columns of an account in the order in which they are stored, as the form shows them: switches are
  // "0" and "1".
  static constexpr std::size_t value_count = 11;
  using Values = std::array<std::string, value_count>;
  std::array<Control*, value_count> value_controls();
  Values shown_values();
  void show_value(Control& control, const std::string& value);
  std::optional<Values> stored_values(const std::string& entry);

  // What the form was filled from.
  struct Loaded {
    std::string entry;
    Values values;
  };
  enum class Turn { write, again, not_decided };
  // Of an account that is there: whether the form may be written over it, within the transaction that is
  // going to. What others have stored since is shown where the form is unchanged, and asked about elsewhere.
  Turn compare(const std::string& entry);
  // What the form shows of the account is what is stored now, unless the transaction is dropped.
  void remember_stored(const std::string& entry);

  std::string account() const;
  void show_account();
  void save_account();
  void show_accepted(TextField& field, std::string_view accepted, const std::string& rule);
  void store_directories();
  void delete_account();
  void start_account();
  void empty_form();
  void store_interval();

  std::optional<Loaded> loaded_;
};

}  // namespace zrl
