#include "components/mail/mail_reader.h"

#include <algorithm>
#include <optional>
#include <string>

#include "components/mail/body_text.h"
#include "components/mail/mime_library.h"
#include "components/mail/mime_structure.h"
#include "core/text/ascii.h"
#include "core/text/encoded_words.h"
#include "core/text/mail_address.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::mail {

namespace {

constexpr int deepest_nesting = 20;
constexpr int most_parts = 10'000;

// One line of valid UTF-8, cut between characters.
std::string one_line(std::string_view text, std::size_t limit) {
  std::string result = valid_utf8(text);
  std::ranges::replace_if(result, is_control, ' ');
  return std::string(trim(cut_between_characters(result, limit)));
}

// The library ends a text at a zero byte, which a mail may contain.
std::string without_controls(const std::string& field) {
  std::string result = field;
  std::ranges::replace_if(result, is_control, ' ');
  return result;
}

std::string decoded(const std::string& field) {
  const std::string text = without_controls(field);
  return one_line(decode_encoded_words(cut_between_characters(text, 2 * longest_field)), longest_field);
}

std::string cut(const std::string& text, std::size_t limit) {
  return text.size() <= limit ? text : one_line(text, limit);
}

// The entry as the text of a mailbox that can be parsed again; an entry that is no mailbox is only decoded.
std::string decoded_entry(std::string_view entry) {
  Mailbox mailbox;
  const std::size_t bracket = entry.rfind('<');
  const std::size_t comment = entry.find('(');
  if (entry.ends_with('>') && bracket != entry.npos) {
    mailbox.name = unquoted_name(entry.substr(0, bracket));
    mailbox.address = trim(entry.substr(bracket + 1, entry.size() - bracket - 2));
  } else if (entry.ends_with(')') && comment != entry.npos) {
    mailbox.name = entry.substr(comment + 1, entry.size() - comment - 2);
    mailbox.address = trim(entry.substr(0, comment));
  }
  if (!is_mail_address(mailbox.address)) return decoded(std::string(entry));
  mailbox.name = cut(decoded(mailbox.name), Mailbox::longest_name);
  return to_text(mailbox);
}

std::string decoded_mailboxes(const std::string& field) {
  std::string result;
  for (const std::string_view entry : split_mailboxes(field)) {
    if (!result.empty()) result += ", ";
    result += decoded_entry(entry);
  }
  return one_line(result, longest_field);
}

// An invalid type counts as plain text (RFC 2045, section 5.2).
std::string content_type(const std::string& field) {
  const std::size_t slash = field.find('/');
  return slash < field.find(';') ? without_controls(field) : "text/plain";
}

// A part that people read.
struct Leaf {
  std::string_view content;
  BodyEncoding encoding;
};

// Looks for both bodies in a message.
class BodySearch {
 public:
  void visit(const MimeEntity& entity, int depth) {
    const MimeRef<GMimeContentType> type(
        g_mime_content_type_parse(nullptr, content_type(entity.field(MimeField::content_type)).c_str()));
    if (g_mime_content_type_is_type(type.get(), "multipart", "*")) {
      const char* boundary = g_mime_content_type_get_parameter(type.get(), "boundary");
      if (boundary != nullptr && depth < deepest_nesting) visit_parts(entity, boundary, depth);
    } else if (is_attachment(entity)) {
      return;
    } else if (g_mime_content_type_is_type(type.get(), "text", "plain")) {
      take(text, entity, type.get());
    } else if (g_mime_content_type_is_type(type.get(), "text", "html")) {
      take(html, entity, type.get());
    }
  }

  std::optional<Leaf> text;
  std::optional<Leaf> html;

 private:
  bool is_over() const { return (text && html) || parts_ >= most_parts; }

  void visit_parts(const MimeEntity& entity, const std::string& boundary, int depth) {
    for_each_part(entity.body, boundary, [&](std::string_view part) {
      ++parts_;
      visit(read_entity(part), depth + 1);
      return !is_over();
    });
  }

  // An unknown disposition counts as an attachment (RFC 2183, section 2.8).
  static bool is_attachment(const MimeEntity& entity) {
    const std::string& field = entity.field(MimeField::content_disposition);
    if (trim(field).empty()) return false;
    const MimeRef<GMimeContentDisposition> disposition(
        g_mime_content_disposition_parse(nullptr, without_controls(field).c_str()));
    const char* kind = g_mime_content_disposition_get_disposition(disposition.get());
    return kind == nullptr || !equals_ignoring_case(kind, "inline");
  }

  static void take(std::optional<Leaf>& leaf, const MimeEntity& entity, GMimeContentType* type) {
    if (leaf) return;
    const char* charset = g_mime_content_type_get_parameter(type, "charset");
    leaf = Leaf{entity.body,
                {std::string(trim(entity.field(MimeField::content_transfer_encoding))),
                 charset == nullptr ? std::string() : std::string(charset)}};
  }

  int parts_ = 0;
};

std::string text_of(const std::optional<Leaf>& leaf) {
  return leaf ? body_text(leaf->content, leaf->encoding, MailMessage::longest_body) : std::string();
}

}  // namespace

Mail read_mail(std::string_view source) {
  initialise_mime_library();
  const MimeEntity message = read_entity(source.substr(0, MailMessage::longest_source));
  BodySearch search;
  search.visit(message, 0);
  Mail mail;
  mail.sender = decoded_mailboxes(message.field(MimeField::from));
  mail.recipient = decoded_mailboxes(message.field(MimeField::to));
  mail.subject = cut(decoded(message.field(MimeField::subject)), MailMessage::longest_subject);
  mail.text_body = text_of(search.text);
  mail.html_body = text_of(search.html);
  return mail;
}

}  // namespace zrl::mail
