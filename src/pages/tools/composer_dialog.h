#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/contracts/mail_message.h"
#include "core/database_client.h"
#include "core/form.h"

namespace zrl {

// Writes a mail and sends it through a mail server (SMTP, RFC 5321). Sending blocks for two minutes at most
// while events are served; closing the dialog stops it, unless the server has taken the mail over. The
// outcome is shown in the dialog, which stays open.
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

  // Presets the mail. All texts are UTF-8; sender and recipients as parse_mailboxes() reads them. Nothing is
  // checked before the user sends.
  void fill_form(std::string_view from, std::string_view to, std::string_view about, std::string_view text,
                 std::string_view html);
  // Presets server and port from the options `forwardaddress` and `forwardport`, over a connection that it
  // opens and drops; shows a message box if that fails. A field whose option is not set stays as it is.
  void load_forward();

  void close() override;

 private:
  void click_send();
  // The first reason why the mail cannot be sent, in English; empty if there is none.
  std::string first_problem() const;
  void deliver();
  void show_status(std::string_view text);

  std::shared_ptr<MailMessage> sending_;
};

// Opens the dialog with a mail of plain text, preset to go through the forward server. `from` and `to` are as
// parse_mailboxes() reads them and may be empty; all texts are UTF-8. Where the host shows dialogs modal,
// this returns when the dialog has been closed. The console keeps the dialog alive.
void open_composer(Console& console, std::string_view from, std::string_view to, std::string_view about,
                   std::string_view text);

}  // namespace zrl
