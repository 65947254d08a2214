#include "pages/tools/composer_dialog.h"

#include <limits>

#include "core/text/mail_address.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// 0 if the text is no port number.
std::uint16_t port_number(std::string_view text) {
  const auto number = to_number(text);
  const bool fits = number && *number > 0 && *number <= std::numeric_limits<std::uint16_t>::max();
  return fits ? static_cast<std::uint16_t>(*number) : std::uint16_t{0};
}

}  // namespace

ComposerDialog::ComposerDialog(Console& console)
    : Form(console, "composer", "Write a mail"), DatabaseClient(console) {
  send.on_click = [this] { click_send(); };
  cancel.on_click = [this] { close(); };
  cancel.set_replaces({&sender, &recipient, &subject, &textbody, &htmlbody});
  server.set_expects(expects::host);
  port.set_expects(expects::port);
  set_layout(column({
      row({grow(sender), grow(recipient)}),
      subject,
      grow(textbody),
      htmlbody,
      frame(Frame1, row({grow(server), port})),
      row({send, cancel}),
      status,
  }));
  translate_controls();
  set_caption(translate(caption()));
  port.set_text("25");
}

void ComposerDialog::fill_form(std::string_view from, std::string_view to, std::string_view about,
                               std::string_view text, std::string_view html) {
  sender.set_text(from);
  recipient.set_text(to);
  subject.set_text(about);
  textbody.set_text(text);
  htmlbody.set_text(html);
}

void ComposerDialog::load_forward() {
  connect_database();
  const auto address = read_string("forwardaddress");
  if (address && !trim(*address).empty()) server.set_text(trim(*address));
  const auto number = read_option("forwardport");
  if (number && port_number(number->text) != 0) port.set_text(std::to_string(port_number(number->text)));
  drop_database();
}

void ComposerDialog::close() {
  if (sending_) sending_->cancel();
  Form::close();
}

void ComposerDialog::click_send() {
  for (TextField* field : {&sender, &recipient, &server, &port}) field->set_text(trim(field->text()));
  const std::string problem = first_problem();
  if (!problem.empty()) {
    show_status(problem);
    return;
  }
  send.set_enabled(false);
  show_status("The mail is being sent...");
  deliver();
  sending_.reset();
  send.set_enabled(true);
}

std::string ComposerDialog::first_problem() const {
  const MailboxList from = parse_mailboxes(sender.text());
  const MailboxList to = parse_mailboxes(recipient.text());
  if (from.wrong) return "The sender is no mail address: " + *from.wrong;
  if (from.mailboxes.empty()) return "The sender is missing";
  if (from.mailboxes.size() > 1) return "There can be one sender only";
  if (to.wrong) return "The recipient is no mail address: " + *to.wrong;
  if (to.mailboxes.empty()) return "The recipient is missing";
  if (to.mailboxes.size() > MailMessage::most_recipients) return "There are too many recipients";
  if (server.text().empty()) return "The server is missing";
  if (!is_mail_host(server.text())) return "The server is neither a host name nor an IP number";
  if (port_number(port.text()) == 0) return "The port is no number from 1 to 65535";
  return {};
}

void ComposerDialog::deliver() {
  const Mail mail{sender.text(), recipient.text(), subject.text(), textbody.text(), htmlbody.text()};
  const MailServer to{server.text(), port_number(port.text())};
  const std::string step = "send " + mail.recipient + " via " + to.host + ":" + std::to_string(to.port);
  const Outcome sent = component_step(step, [&] {
    sending_ = console().components().create<MailMessage>();
    sending_->send(mail, to);
  });
  if (sent) {
    say_done("The server has taken the mail over");
  } else {
    say_failed("The mail was not sent");
  }
  show_status(sent ? "The server has taken the mail over" : "The mail was not sent: " + sent.problem);
}

void ComposerDialog::show_status(std::string_view text) {
  status.set_caption(translate(text));
}

void open_composer(Console& console, std::string_view from, std::string_view to, std::string_view about,
                   std::string_view text) {
  const auto composer = std::make_shared<ComposerDialog>(console);
  composer->fill_form(from, to, about, text, {});
  composer->load_forward();
  console.show(composer);
}

}  // namespace zrl
