#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zrl {

// What people see of a mail. All texts are UTF-8; of a mail that was read, strangers wrote them.
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

// Reads and sends mail (RFC 5322, RFC 2045 to 2047, RFC 5321). An object may be used for any number of mails.
class MailMessage {
 public:
  static constexpr std::string_view program_id = "CDO.Message";

  // In bytes: what follows in a longer source is not read, the rest of a longer body is dropped.
  static constexpr std::size_t longest_source = std::size_t{64} << 20;
  static constexpr std::size_t longest_body = std::size_t{8} << 20;
  // In bytes. Longer subjects are cut when a mail is read, and refused when one is sent.
  static constexpr std::size_t longest_subject = 8000;
  static constexpr std::size_t most_recipients = 100;

  virtual ~MailMessage() = default;

  // The parts of a mail by its source, which may be any bytes: time and memory are linear in its size. What
  // is broken, missing or too deeply nested reads as empty and raises no error.
  //
  // Sender, recipient and subject are the first fields From, To and Subject, decoded, without control
  // characters. The bodies are the first part of the type text/plain and the first of text/html that
  // are no attachments, inside any nesting of multiparts (but not inside attached mails), with the
  // transfer encoding and the character set decoded; lines end with a line feed. Bytes that have no
  // meaning in the character set, and zero bytes, become U+FFFD; if the set is missing or unknown, the
  // bytes are read as UTF-8 if they are well-formed, else as windows-1252. A source that does not begin
  // with a header is a text body.
  virtual Mail parse(std::string_view source) = 0;

  // Delivers one mail to the server, for all recipients or for none. The mail gets a date and an
  // identifier; with both bodies it is a multipart/alternative. Control characters of the subject
  // become blanks, so that no text adds a header field.
  //
  // Encrypts if the server offers STARTTLS (RFC 3207) and accepts any certificate: as usual between mail
  // servers, this protects against eavesdropping, not against an impostor.
  //
  // Returns when the server has accepted the mail; the console's events are served meanwhile. Raises
  // zrl::Error if it has not: with the server's reply (its code being the number), or with what is wrong
  // with the connection, the addresses, or the size. The text is one line of printable UTF-8. Takes two
  // minutes at most.
  virtual void send(const Mail& mail, const MailServer& server) = 0;

  // Makes a send() that is under way raise an error soon, unless the server has accepted the mail already.
  // For event handlers that run while send() waits, on the same thread; has no effect at other times.
  virtual void cancel() = 0;
};

}  // namespace zrl
