#include "components/mail/mail_reader.h"

#include <algorithm>
#include <optional>
#include <string>

#include "components/mail/body_text.h"
#include "components/mail/mime_library.h"
#include "components/mail/mime_structure.h"
#include "core/text.h"

namespace zrl {

namespace {

constexpr int deepest_nesting = 20;
constexpr int most_parts = 10'000;
// The library reads groups of addresses by recursion, and a group has a colon.
constexpr std::ptrdiff_t most_colons = 100;

bool is_control(char c) {
  return (c >= '\0' && c < ' ') || c == '\x7F';
}

// One line of valid UTF-8, cut between characters.
std::string one_line(std::string_view text, std::size_t limit) {
  std::string result = valid_utf8(text);
  std::ranges::replace_if(result, is_control, ' ');
  if (result.size() > limit) {
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(result[end]) & 0xC0) == 0x80) --end;
    result.resize(end);
  }
  return std::string(trim(result));
}

// What the library takes for the end of a text is none in a mail.
std::string without_controls(const std::string& field) {
  std::string result = field;
  std::ranges::replace_if(result, is_control, ' ');
  return result;
}

std::string decoded_text(GMimeParserOptions* options, const std::string& field) {
  const MimeText text(g_mime_utils_header_decode_text(options, without_controls(field).c_str()));
  return text ? std::string(text.get()) : std::string();
}

// Names with the quotes that they need, so that the text can be read again as it is.
std::string decoded_addresses(GMimeParserOptions* options, const std::string& field) {
  const std::string text = without_controls(field);
  if (std::ranges::count(text, ':') <= most_colons) {
    const MimeRef<InternetAddressList> list(internet_address_list_parse(options, text.c_str()));
    if (list && internet_address_list_length(list.get()) > 0) {
      const MimeText decoded(internet_address_list_to_string(list.get(), nullptr, FALSE));
      if (decoded) return decoded.get();
    }
  }
  return decoded_text(options, field);
}

// What is no type counts as plain text (RFC 2045, section 5.2).
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
  explicit BodySearch(GMimeParserOptions* options) : options_(options) {}

  void visit(const MimeEntity& entity, int depth) {
    const MimeRef<GMimeContentType> type(
        g_mime_content_type_parse(options_, content_type(entity.field(MimeField::content_type)).c_str()));
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

  // A disposition that nobody knows counts as an attachment (RFC 2183, section 2.8).
  bool is_attachment(const MimeEntity& entity) const {
    const std::string& field = entity.field(MimeField::content_disposition);
    if (trim(field).empty()) return false;
    const MimeRef<GMimeContentDisposition> disposition(
        g_mime_content_disposition_parse(options_, without_controls(field).c_str()));
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

  GMimeParserOptions* options_;
  int parts_ = 0;
};

std::string text_of(const std::optional<Leaf>& leaf) {
  return leaf ? body_text(leaf->content, leaf->encoding, MailMessage::longest_body) : std::string();
}

}  // namespace

Mail read_mail(std::string_view source) {
  const ParserOptions options = make_parser_options();
  const MimeEntity message = read_entity(source.substr(0, MailMessage::longest_source));
  BodySearch search(options.get());
  search.visit(message, 0);
  Mail mail;
  mail.sender = one_line(decoded_addresses(options.get(), message.field(MimeField::from)), longest_field);
  mail.recipient = one_line(decoded_addresses(options.get(), message.field(MimeField::to)), longest_field);
  mail.subject =
      one_line(decoded_text(options.get(), message.field(MimeField::subject)), MailMessage::longest_subject);
  mail.text_body = text_of(search.text);
  mail.html_body = text_of(search.html);
  return mail;
}

}  // namespace zrl
