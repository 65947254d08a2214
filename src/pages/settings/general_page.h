#pragma once

#include <cstdint>

#include "core/page.h"

namespace zrl {

// The main switches of the filtering service, the display language, and the update of all lists. A click
// stores its switch at once. A language takes effect in the next console, because a console keeps the one
// that it found first; English is stored by deleting the registry value.
class GeneralPage : public Page {
 public:
  explicit GeneralPage(Console& console);

  Label headline{*this, "headline", "Welcome"};

  ComboBox Combo1{*this,
                  "Combo1",
                  "The language of the console's texts; empty means English",
                  {.editable = true, .placeholder = "english"}};
  Label Label1{*this, "Label1", "Language", Combo1};

  Frame Frame1{*this, "Frame1", "Sender"};
  Frame Frame2{*this, "Frame2", "Greeting"};
  Frame Frame3{*this, "Frame3", "Conversation"};
  Frame Frame4{*this, "Frame4", "Log and archive"};
  Frame Frame5{*this, "Frame5", "Lists"};

  CheckBox mx{*this, "mx", "Check the sender's mail exchanger",
              "Refuses mail whose sender domain, in the envelope or in the header, has no mail exchanger"};
  CheckBox removereceipts{*this, "removereceipts", "Remove receipt requests",
                          "Takes requests for a reading receipt out of passing mail"};
  CheckBox comparemimewithsmtp{*this, "comparemimewithsmtp", "Compare header and envelope sender",
                               "Refuses mail whose two senders differ"};
  CheckBox checkforat{*this, "checkforat", "Require an at sign in addresses",
                      "Refuses sender addresses without an at sign"};
  CheckBox Check1{*this, "Check1", "Test for open relays",
                  "Tests by itself whether a sending server relays for everyone"};
  CheckBox protokoll{*this, "protokoll", "Log the conversations", "Writes the SMTP conversations to the log"};
  CheckBox arcbody{*this, "arcbody", "Archive message bodies",
                   "Keeps whole messages in the archive, not only their headers"};

  CheckBox enablepipe{*this, "enablepipe", "Allow pipelining",
                      "Lets clients send several commands without waiting for the replies"};
  CheckBox ehlo{*this, "ehlo", "Accept EHLO", "Answers the extended greeting of clients"};
  CheckBox simulation{*this, "simulation", "Simulation mode",
                      "Checks and logs everything, but rejects nothing"};

  CheckBox autoimport{*this, "autoimport", "Import lists automatically", "Imports new list files every hour"};

  CheckBox cutconnection{*this, "cutconnection", "Cut the connection on rejection",
                         "Closes the connection as soon as a mail is rejected"};

  CheckBox checkhelovalid{*this, "checkhelovalid", "Validate the HELO name",
                          "Refuses clients that greet with a name that is not valid"};
  CheckBox greylisting{*this, "greylisting", "Greylisting",
                       "Asks unknown senders to try again later, which most spammers never do"};
  CheckBox checkmid{*this, "checkmid", "Require a message identifier", "Refuses mail without a Message-ID"};
  CheckBox checkheloip{*this, "checkheloip", "Refuse IP numbers as HELO",
                       "Refuses clients that greet with an IP number"};
  CheckBox blockndr{*this, "blockndr", "Block non-delivery reports",
                    "Refuses all non-delivery reports; switches automatic blacklisting from headers off"};

  CheckBox debugging{*this, "debugging", "Debug logging",
                     "Writes every step of the service to its log; slows it down"};

  Button Command1{*this, "Command1", "Update all lists",
                  "Fetches the published lists from the update server and merges them into all lists"};
  Timer Timer1{*this, "Timer1", 5000, true};

 private:
  void show() override;
  void load() override;

  void load_settings();
  void load_autoimport();
  void show_autoimport();
  void load_debugging();

  void choose_language();
  void click_mx();
  void click_blockndr();
  void click_debugging();
  void update_all();
};

}  // namespace zrl
