#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zrl {

// What people see of a mail. All texts are UTF-8.
struct Mail {
  std::string sender;     // as parse_mailboxes() reads it: ann@example.com, or Ann <ann@example.com>
  std::string recipient;  // the same; several with commas or semicolons between them
  std::string subject;    // one line
  std::string text_body;
  std::string html_body;
};

struct MailServer {
  std::string host;  // a name or an address, as is_mail_host() allows it
  std::uint16_t port = 25;
};

// Reads and sends mail (RFC 5322, 2045 to 2047, 5321).
class MailMessage {
 public:
  static constexpr std::string_view program_id = "CDO.Message";

  // Of a source nothing is read beyond this, and of a body nothing kept beyond that, in bytes.
  static constexpr std::size_t longest_source = std::size_t{64} << 20;
  static constexpr std::size_t longest_body = std::size_t{8} << 20;
  // Longer subjects are cut where a mail is read, and refused where one is sent.
  static constexpr std::size_t longest_subject = 8000;
  static constexpr std::size_t most_recipients = 100;

  virtual ~MailMessage() = default;

  // The parts of a mail by its source, which may be any bytes: time and memory stay in proportion to
  // its size. What is broken, missing or too deeply nested reads as empty.
  //
  // Sender, recipient and subject are the first fields From, To and Subject, decoded, without control
  // characters. The bodies are the first part of the type text/plain and the first of text/html that
  // are no attachments, inside any nesting of multiparts (but not inside attached mails), with the
  // transfer encoding and the character set decoded; lines end with a line feed. Bytes that have no
  // meaning in the character set, and zero bytes, become U+FFFD; a set that is missing or unknown is
  // taken for UTF-8 if it can be, else for windows-1252. A source that does not begin with a header
  // is a text body.
  virtual Mail parse(std::string_view source) = 0;

  // Hands one mail to the server, for all recipients or for none. The mail gets a date and an
  // identifier; with both bodies it is a multipart/alternative. Control characters of the subject
  // become blanks, so that no text adds a field.
  //
  // Encrypts if the server offers STARTTLS, whatever certificate it shows: mail between servers is
  // protected against listeners this way, not against an impostor.
  //
  // Returns when the server has taken the mail over. Raises zrl::Error if it has not: with the
  // server's reply (its code being the number), or with what is wrong with the connection, the
  // addresses, or the size. The text is one line of printable UTF-8. Takes two minutes at most.
  virtual void send(const Mail& mail, const MailServer& server) = 0;

  // Makes a send() that is under way raise an error soon, unless the server has taken the mail over
  // already. For events that run while it waits.
  virtual void cancel() = 0;
};

}  // namespace zrl
