#include "components/mail/mail_writer.h"

#include <algorithm>

#include "components/mail/mime_library.h"
#include "core/text/ascii.h"
#include "core/text/base64.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl::mail {

namespace {

// A line of a header has 78 characters at best, with the field's name (RFC 5322, section 2.1.1); an
// encoded word 75 at most (RFC 2047, section 2).
constexpr std::size_t longest_plain_text = 68;
constexpr std::size_t bytes_in_word = 45;
constexpr std::size_t longest_line = 900;

struct FreeFormat {
  void operator()(GMimeFormatOptions* options) const { g_mime_format_options_free(options); }
};

struct ReleaseTime {
  void operator()(GDateTime* time) const { g_date_time_unref(time); }
};

// Valid UTF-8 without zero bytes, its lines ended by CR LF (RFC 2046, section 4.1.1).
std::string canonical(std::string_view body) {
  std::string result;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const char c = body[i];
    if (c == '\n' || c == '\r') {
      result += "\r\n";
      if (c == '\r' && i + 1 < body.size() && body[i + 1] == '\n') ++i;
    } else {
      result += c == '\0' ? ' ' : c;
    }
  }
  return valid_utf8(result);
}

// The library's own choice overlooks a long last line.
GMimeContentEncoding encoding_for(std::string_view content) {
  std::size_t foreign = 0;
  std::size_t longest = 0;
  std::size_t line = 0;
  for (const char c : content) {
    line = c == '\n' ? 0 : line + 1;
    longest = std::max(longest, line);
    if ((c < ' ' && c != '\t' && c != '\r' && c != '\n') || c == '\x7F') ++foreign;
  }
  if (foreign == 0 && longest <= longest_line) return GMIME_CONTENT_ENCODING_7BIT;
  return foreign > content.size() / 4 ? GMIME_CONTENT_ENCODING_BASE64
                                      : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE;
}

MimeRef<GMimeObject> text_part(const char* subtype, const std::string& body) {
  GMimeTextPart* part = g_mime_text_part_new_with_subtype(subtype);
  g_mime_text_part_set_charset(part, "utf-8");
  const std::string content = canonical(body);
  const MimeRef<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(content.data(), content.size()));
  const MimeRef<GMimeDataWrapper> wrapper(
      g_mime_data_wrapper_new_with_stream(stream.get(), GMIME_CONTENT_ENCODING_DEFAULT));
  g_mime_part_set_content(GMIME_PART(part), wrapper.get());
  g_mime_part_set_content_encoding(GMIME_PART(part), encoding_for(content));
  return MimeRef<GMimeObject>(GMIME_OBJECT(part));
}

MimeRef<GMimeObject> body_part(const Mail& mail) {
  if (mail.html_body.empty()) return text_part("plain", mail.text_body);
  if (mail.text_body.empty()) return text_part("html", mail.html_body);
  GMimeMultipart* both = g_mime_multipart_new_with_subtype("alternative");
  g_mime_multipart_add(both, text_part("plain", mail.text_body).get());
  g_mime_multipart_add(both, text_part("html", mail.html_body).get());
  return MimeRef<GMimeObject>(GMIME_OBJECT(both));
}

std::string one_line(std::string_view subject) {
  std::string result = valid_utf8(subject);
  std::ranges::replace_if(result, is_control, ' ');
  return std::string(trim(result));
}

// Subject and addresses are written here, because the library's own writer does not encode what looks like an
// encoded word, does not fold long lines, and makes encoded words that are too long.
bool is_plain(std::string_view text) {
  return text.size() <= longest_plain_text && text.find("=?") == text.npos &&
         std::ranges::all_of(text, [](char c) { return c >= ' ' && c < '\x7F'; });
}

// One word a line (RFC 2047); each but the first begins with a blank.
std::string encoded_words(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view piece = cut_between_characters(text, bytes_in_word);
    if (!result.empty()) result += "\n ";
    result.append("=?utf-8?B?").append(base64_encode(piece)).append("?=");
    text.remove_prefix(piece.size());
  }
  return result;
}

std::string written(const Mailbox& mailbox) {
  if (mailbox.name.empty()) return mailbox.address;
  if (!is_plain(mailbox.name)) return encoded_words(mailbox.name) + "\n <" + mailbox.address + ">";
  return to_text(mailbox);
}

std::string written(const std::vector<Mailbox>& mailboxes) {
  std::string result;
  for (const Mailbox& mailbox : mailboxes) result += (result.empty() ? "" : ",\n ") + written(mailbox);
  return result;
}

// `value` is folded, with line feeds.
void set_field(GMimeMessage* message, const char* name, const std::string& value) {
  GMimeObject* object = GMIME_OBJECT(message);
  g_mime_object_set_header(object, name, "", nullptr);
  GMimeHeader* header = g_mime_header_list_get_header(g_mime_object_get_header_list(object), name);
  g_mime_header_set_raw_value(header, (" " + value + "\n").c_str());
}

std::string source_of(GMimeMessage* message) {
  const std::unique_ptr<GMimeFormatOptions, FreeFormat> format(g_mime_format_options_new());
  g_mime_format_options_set_newline_format(format.get(), GMIME_NEWLINE_FORMAT_DOS);
  const MimeRef<GMimeStream> stream(g_mime_stream_mem_new());
  g_mime_object_write_to_stream(GMIME_OBJECT(message), format.get(), stream.get());
  const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get()));
  return {reinterpret_cast<const char*>(bytes->data), bytes->len};
}

}  // namespace

std::string write_mail(const Mail& mail, const Mailbox& sender, const std::vector<Mailbox>& recipients) {
  initialise_mime_library();
  const MimeRef<GMimeMessage> message(g_mime_message_new(TRUE));
  const std::string subject = one_line(mail.subject);
  set_field(message.get(), "From", written(sender));
  set_field(message.get(), "To", written(recipients));
  set_field(message.get(), "Subject", is_plain(subject) ? subject : encoded_words(subject));
  const std::unique_ptr<GDateTime, ReleaseTime> now(g_date_time_new_now_local());
  g_mime_message_set_date(message.get(), now.get());
  const std::string domain = sender.address.substr(sender.address.rfind('@') + 1);
  const MimeText id(g_mime_utils_generate_message_id(domain.c_str()));
  g_mime_message_set_message_id(message.get(), id.get());
  g_mime_message_set_mime_part(message.get(), body_part(mail).get());
  return source_of(message.get());
}

}  // namespace zrl::mail
