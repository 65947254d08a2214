#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/contracts/mail_message.h"
#include "core/database_client.h"
#include "core/form.h"

namespace zrl {

// Writes a mail and sends it through a mail server.
class ComposerDialog : public Form, public DatabaseClient {
 public:
  explicit ComposerDialog(Console& console);

  TextField sender{
      *this, "sender", "The address that the mail comes from", {.placeholder = "name@example.com"}};
  Label Label1{*this, "Label1", "Sender", sender};
  TextField recipient{*this,
                      "recipient",
                      "Where the mail goes; several addresses with commas or semicolons between them",
                      {.placeholder = "name@example.com"}};
  Label Label2{*this, "Label2", "Recipient", recipient};
  TextField subject{*this, "subject", "What the mail is about"};
  Label Label3{*this, "Label3", "Subject", subject};
  TextField textbody{*this, "textbody", "The mail as plain text", {.multi_line = true}};
  Label Label4{*this, "Label4", "Text", textbody};
  TextField htmlbody{*this,
                     "htmlbody",
                     "The mail as HTML, for programs that show it; may be empty",
                     {.multi_line = true, .fixed_pitch = true}};
  Label Label5{*this, "Label5", "HTML", htmlbody};

  Frame Frame1{*this, "Frame1", "Mail server"};
  TextField server{*this, "server", "The name or the IP number of the server that takes the mail"};
  Label Label6{*this, "Label6", "Server", server};
  TextField port{*this, "port", "The server's port, usually 25"};
  Label Label7{*this, "Label7", "Port", port};

  Button send{*this, "send", "Send", "Hands the mail to the server"};
  Button cancel{*this, "cancel", "Cancel", "Closes the window; a mail that is being sent is stopped"};
  Label status{*this, "status", ""};

  // Presets the mail: UTF-8; sender and recipient as parse_mailboxes() reads them.
  void fill_form(std::string_view from, std::string_view to, std::string_view about, std::string_view text,
                 std::string_view html);
  // Takes server and port from the options `forwardaddress` and `forwardport`, over a connection of
  // its own. What is not set there stays as it is.
  void load_forward();

  void close() override;

 private:
  void click_send();
  // The first thing in the form that keeps the mail from being sent, in English; or empty.
  std::string first_problem() const;
  void deliver();
  void show_status(std::string_view text);

  std::shared_ptr<MailMessage> sending_;
};

// Opens the dialog on a mail of plain text that goes through the forward server. `from` and `to` as
// parse_mailboxes() reads them, all texts UTF-8.
void open_composer(Console& console, std::string_view from, std::string_view to, std::string_view about,
                   std::string_view text);

}  // namespace zrl
