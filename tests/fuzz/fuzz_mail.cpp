// Mail: whatever it is, what is read of it is valid UTF-8 of bounded length, fields are one line, and
// no text that comes from it adds a field or a recipient to a mail that answers it.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "components/mail/mail_reader.h"
#include "components/mail/mail_writer.h"
#include "core/text/utf8.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

bool is_one_line(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zrl::Mail mail = zrl::mail::read_mail({reinterpret_cast<const char*>(data), size});
  for (const std::string* field : {&mail.sender, &mail.recipient, &mail.subject}) {
    require(is_one_line(*field) && zrl::is_valid_utf8(*field));
  }
  for (const std::string* body : {&mail.text_body, &mail.html_body}) {
    require(zrl::is_valid_utf8(*body) && body->find_first_of(std::string_view("\r\0", 2)) == body->npos);
  }
  require(mail.subject.size() <= zrl::MailMessage::longest_subject);

  const zrl::MailboxList senders = zrl::parse_mailboxes(mail.sender);
  const zrl::Mailbox self{"", "postmaster@example.com"};
  const std::string answer = zrl::mail::write_mail(mail, self, senders.mailboxes);
  const std::string header = answer.substr(0, answer.find("\r\n\r\n"));
  for (std::size_t at = header.find("\r\n"); at != header.npos; at = header.find("\r\n", at + 2)) {
    const std::string_view line = std::string_view(header).substr(at + 2);
    const bool expected = line.starts_with(' ') || line.starts_with('\t') || line.starts_with("Date: ") ||
                          line.starts_with("From: ") || line.starts_with("To: ") ||
                          line.starts_with("Subject: ") || line.starts_with("Message-Id: ") ||
                          line.starts_with("MIME-Version: ") || line.starts_with("Content-");
    require(expected);
  }
  require(zrl::mail::read_mail(answer).subject == mail.subject);
  return 0;
}
