#include "host/sample/mail_forms.h"

#include "host/sample/encoding.h"
#include "host/sample/lists.h"

namespace zrl::sample {

namespace {

using std::string_view;

constexpr string_view sentences[] = {
    "thank you for your message of last week.",
    "the figures that you asked for are in the table below.",
    "we have moved the meeting to Thursday at ten, in the small room on the first floor.",
    "please let me know whether the second delivery has arrived.",
    "the draft is nearly done; two pictures are still missing.",
    "as far as I can see, nothing speaks against it.",
    "I shall be away until Monday and will call you then."};
constexpr string_view german[] = {"vielen Dank für die schnelle Antwort.",
                                  "die Schlüssel liegen am Empfang, die Tür schließt um fünf.",
                                  "können wir das Gespräch auf nächsten Dienstag verschieben?",
                                  "über die Änderungen müssten wir noch einmal reden."};
constexpr string_view offers[] = {"Save 80% on pills",     "You have been approved",
                                  "Casino bonus inside",   "Replica watches from 49",
                                  "Your prize is waiting", "Loans without questions"};

// "日本語のテスト" and "优惠发票" in their own sets.
constexpr string_view japanese = "\x1b$BF|K\\8l$N%F%9%H\x1b(B";
constexpr string_view chinese = "\xD3\xC5\xBB\xDD\xB7\xA2\xC6\xB1";

template <typename Sentences>
std::string letter(Generator& random, string_view greeting, const Sentences& from, string_view close) {
  std::string result = join({greeting, "\r\n\r\n"});
  for (std::size_t i = 2 + random.below(5); i > 0; --i) result += join({random.pick(from), "\r\n"});
  return result += join({"\r\n", close, "\r\n"});
}

std::string english_letter(Generator& random) {
  return letter(random, "Hello,", sentences, "Kind regards");
}

std::string german_letter(Generator& random) {
  return letter(random, "Grüß Gott,", german, "Schöne Grüße");
}

std::string content(string_view type, string_view encoding) {
  return join(
      {"MIME-Version: 1.0\r\nContent-Type: ", type, "\r\nContent-Transfer-Encoding: ", encoding, "\r\n"});
}

std::string text_in(string_view charset, string_view encoding) {
  return content(join({"text/plain; charset=", charset}), encoding);
}

std::string part(string_view type, string_view encoding, string_view body, string_view more = "") {
  return join(
      {"Content-Type: ", type, "\r\nContent-Transfer-Encoding: ", encoding, "\r\n", more, "\r\n", body});
}

std::string attachment(string_view name, string_view type, string_view bytes) {
  return part(type, "base64", base64(bytes),
              join({"Content-Disposition: attachment; filename=\"", name, "\"\r\n"}));
}

void make_multipart(Draft& mail, string_view subtype, std::initializer_list<string_view> parts) {
  const std::string boundary =
      join({"=_part_", mail.random.digits(1000000), ".", mail.random.digits(1000000)});
  mail.fields = join(
      {"MIME-Version: 1.0\r\nContent-Type: multipart/", subtype, ";\r\n\tboundary=\"", boundary, "\"\r\n"});
  mail.body = "This is a message in several parts.\r\n";
  for (const string_view one : parts) mail.body += join({"\r\n--", boundary, "\r\n", one});
  mail.body += join({"\r\n--", boundary, "--\r\n"});
}

// What must never run, load or follow.
std::string loud_page(Draft& mail) {
  const std::string site = shady_domain(mail.random);
  const string_view offer = mail.random.pick(offers);
  std::string page = join({"<html><head><title>", offer, "</title><style>body{background:url(http://img.",
                           site, "/b.png)}</style>\r\n<script>document.location='http://", site,
                           "/'</script></head>\r\n<body bgcolor=#ffff00 onload=\"alert(1)\"><center>",
                           "<table width=600 border=0><tr><td colspan=2><h1>", offer,
                           "&nbsp;&#33;&#33;</h1></td></tr>\r\n"});
  for (std::size_t row = 3 + mail.random.below(6); row > 0; --row) {
    page +=
        join({"<tr><td><b>", mail.random.pick(offers), "</b></td><td>&euro;&nbsp;", mail.random.digits(90),
              ",&frac12; &amp; <font color=red>fr<!-- x -->ee</font></td></tr>\r\n"});
  }
  return page += join({"</table><a href=\"http://", site, "/?id=", mail.random.digits(999999),
                       "\">Click here</a><img src=\"http://", site,
                       "/p.gif\" width=1 height=1>\r\n<p style=\"color:#fff\">", mail.random.pick(sentences),
                       "</p></body></html>\r\n"});
}

void spam(Draft& mail) {
  mail.spam = true;
  mail.subject = mail.random.pick(offers);
  mail.sender_name = "Special Offers";
}

void plain(Draft& mail) {
  mail.fields = text_in("us-ascii", "7bit");
  mail.body = english_letter(mail.random);
}

void html_only(Draft& mail) {
  spam(mail);
  mail.fields = content("text/html; charset=\"iso-8859-1\"", "8bit");
  mail.body = loud_page(mail);
}

void alternative(Draft& mail) {
  const std::string text = english_letter(mail.random);
  const std::string page = join({"<html><body><p>", text, "</p></body></html>\r\n"});
  make_multipart(mail, "alternative",
                 {part("text/plain; charset=utf-8", "7bit", text),
                  part("text/html; charset=utf-8", "quoted-printable", quoted_printable(page))});
}

void loud_alternative(Draft& mail) {
  spam(mail);
  mail.subject = encoded_word("UTF-8", 'B', join({"\u2605 ", mail.random.pick(offers), " \u2605"}));
  const std::string page = base64(loud_page(mail));
  make_multipart(mail, "alternative",
                 {part("text/plain", "7bit", "Your reader shows no HTML.\r\n"),
                  part("text/html; charset=utf-8", "base64", page)});
}

void utf8_quoted(Draft& mail) {
  mail.subject = encoded_word("UTF-8", 'Q', "Rückfrage zur Prüfung");
  mail.fields = text_in("UTF-8", "quoted-printable");
  mail.body = quoted_printable(german_letter(mail.random));
}

void utf8_base64(Draft& mail) {
  mail.subject = encoded_word("utf-8", 'B', "Übergabe am Donnerstag — bitte bestätigen");
  mail.sender_name = encoded_word("utf-8", 'B', "Büro Süd");
  mail.fields = text_in("utf-8", "base64");
  mail.body = base64(german_letter(mail.random));
}

void latin1(Draft& mail) {
  mail.subject = encoded_word("ISO-8859-1", 'Q', single_byte("Änderung der Öffnungszeiten", "ISO-8859-1"));
  mail.fields = text_in("ISO-8859-1", "quoted-printable");
  mail.body = quoted_printable(single_byte(german_letter(mail.random), "ISO-8859-1"));
}

void latin9(Draft& mail) {
  mail.subject = encoded_word("iso-8859-15", 'Q', single_byte("Rechnung über 250 €", "ISO-8859-15"));
  mail.fields = text_in("iso-8859-15", "8bit");
  mail.body = single_byte("Grüß Gott,\r\n\r\nbitte überweisen Sie 250 €.\r\n", "ISO-8859-15");
}

void cyrillic(Draft& mail) {
  mail.spam = true;
  mail.subject =
      encoded_word("windows-1251", 'B', single_byte("Выгодное предложение для вас", "windows-1251"));
  mail.fields = text_in("windows-1251", "base64");
  mail.body = base64(single_byte("Добрый день!\r\nТолько сегодня скидка 80%.\r\n", "windows-1251"));
}

void iso2022(Draft& mail) {
  mail.subject = encoded_word("ISO-2022-JP", 'B', japanese);
  mail.fields = text_in("ISO-2022-JP", "7bit");
  mail.body = join({japanese, "\r\n"});
}

void gb2312(Draft& mail) {
  mail.spam = true;
  mail.subject = encoded_word("gb2312", 'B', chinese);
  mail.fields = text_in("gb2312", "base64");
  mail.body = base64(join({chinese, "\r\n"}));
}

void folded_words(Draft& mail) {
  mail.subject = join({encoded_word("UTF-8", 'B', "Einladung zur Jahresversammlung der "), "\r\n ",
                       encoded_word("UTF-8", 'B', "Gartenfreunde in Nord und Süd"), "\r\n ",
                       encoded_word("ISO-8859-1", 'Q', single_byte(" und für alle", "ISO-8859-1"))});
  mail.fields = text_in("utf-8", "quoted-printable");
  mail.body = quoted_printable(german_letter(mail.random));
}

void with_attachment(Draft& mail) {
  const std::string text = english_letter(mail.random);
  const std::string bytes = join({"%PDF-1.4\n", mail.random.bytes(600), "\n%%EOF\n"});
  make_multipart(mail, "mixed",
                 {part("text/plain; charset=us-ascii", "7bit", text),
                  attachment("minutes.pdf", "application/pdf", bytes),
                  attachment("table.csv", "text/csv", "day;pieces\r\n1;20\r\n2;35\r\n")});
}

void with_bait(Draft& mail) {
  spam(mail);
  make_multipart(mail, "mixed",
                 {part("text/plain", "7bit", "See the attached file for details.\r\n"),
                  attachment("document.txt                    .pif", "application/octet-stream",
                             "MZ no program at all")});
}

void newsletter(Draft& mail) {
  const std::string site = decent_domain(mail.random);
  mail.sender_name = "The Weekly Leaf";
  mail.fields = join({"List-Id: <news.", site, ">\r\nList-Unsubscribe: <http://", site,
                      "/leave>\r\nPrecedence: bulk\r\n", text_in("us-ascii", "7bit")});
  mail.body = join({english_letter(mail.random), "-- \r\nRead on: http://", site, "/issue/",
                    mail.random.digits(400), "\r\n"});
}

void failure_report(Draft& mail) {
  mail.report = true;
  mail.sender_name = "Mail Delivery System";
  mail.subject = "Undelivered mail returned to sender";
  make_multipart(mail, "report; report-type=delivery-status",
                 {part("text/plain", "7bit", "Your message could not be delivered.\r\n"),
                  "Content-Type: message/delivery-status\r\n\r\nReporting-MTA: dns; mx.example.net\r\n\r\n"
                  "Final-Recipient: rfc822; nobody@example.net\r\nAction: failed\r\nStatus: 5.1.1\r\n"});
}

constexpr MailForm everyday[] = {{"plain", plain},
                                 {"html only", html_only},
                                 {"alternative", alternative},
                                 {"utf-8 quoted", utf8_quoted},
                                 {"attachment", with_attachment},
                                 {"loud alternative", loud_alternative},
                                 {"newsletter", newsletter},
                                 {"utf-8 base64", utf8_base64},
                                 {"latin-1", latin1},
                                 {"cyrillic", cyrillic},
                                 {"failure report", failure_report},
                                 {"gb2312", gb2312},
                                 {"bait", with_bait},
                                 {"folded words", folded_words},
                                 {"latin-9", latin9},
                                 {"iso-2022-jp", iso2022}};

void no_header(Draft& mail) {
  mail.headless = true;
  mail.body = "A text that comes without any header.\r\nIt has two lines.\r\n";
}

void nothing(Draft& mail) {
  mail.headless = true;
}

void no_body(Draft&) {}

void truncated(Draft& mail) {
  with_attachment(mail);
  mail.body.resize(mail.body.size() * 3 / 5);
}

void wrong_charset(Draft& mail) {
  mail.subject = encoded_word("UTF-8", 'Q', single_byte("Prüfung", "ISO-8859-1"));
  mail.fields = text_in("UTF-8", "8bit");
  mail.body = single_byte(german_letter(mail.random), "ISO-8859-1");
}

void unknown_charset(Draft& mail) {
  mail.subject = encoded_word("x-unheard-of", 'B', "What is this?");
  mail.fields = text_in("x-unheard-of", "quoted-printable");
  mail.body = quoted_printable(german_letter(mail.random));
}

void unknown_encoding(Draft& mail) {
  mail.fields = text_in("us-ascii", "x-made-up");
  mail.body = english_letter(mail.random);
}

void bad_base64(Draft& mail) {
  mail.subject = "=?UTF-8?B?U29tZSB0ZXh0!!?= =?UTF-8?Q?=ZZ_=4?=";
  mail.fields = text_in("utf-8", "base64");
  mail.body = "SGVsbG8*!! d29ybGQ\r\n===\r\nZ\r\n";
}

void no_boundary(Draft& mail) {
  mail.fields = "MIME-Version: 1.0\r\nContent-Type: multipart/mixed\r\n";
  mail.body = "--what\r\nContent-Type: text/plain\r\n\r\nNobody told the boundary.\r\n--what--\r\n";
}

void raw_subject(Draft& mail) {
  mail.subject = single_byte("Größte Auswahl, ungültig kodiert", "ISO-8859-1");
  plain(mail);
}

void control_bytes(Draft& mail) {
  mail.fields = text_in("us-ascii", "8bit");
  mail.body =
      join({"before", string_view("\0\0\x1b[2J\x07", 7), "after\r\n", mail.random.bytes(300), "\r\n"});
}

void bare_line_feeds(Draft& mail) {
  mail.fields = "MIME-Version: 1.0\nContent-Type: text/plain\n";
  mail.body = "Lines end\nin their own way\rhere.\n.\n..\n";
}

void long_line(Draft& mail) {
  plain(mail);
  for (int i = 0; i < 4000; ++i) mail.body += "all in one line; ";
}

void long_subject(Draft& mail) {
  plain(mail);
  mail.subject.clear();
  for (int i = 0; i < 120; ++i) mail.subject += "Re: Fwd: ";
}

void hostile_subject(Draft& mail) {
  html_only(mail);
  mail.subject = "<img src=x onerror=alert(document.cookie)> '; DELETE FROM words; --";
  mail.sender_name = "\\\"><script>alert(2)</script>";
}

void right_to_left(Draft& mail) {
  mail.subject = encoded_word("UTF-8", 'B', "\u202Egpj.oter\u202C הזמנה לפגישה");
  make_multipart(mail, "mixed",
                 {part("text/plain; charset=utf-8", "base64", base64("שלום, מצורף המסמך.\r\n")),
                  attachment("photo_\u202Egpj.exe", "image/jpeg", "no picture")});
}

void deep_tables(Draft& mail) {
  html_only(mail);
  mail.body = "<html><body>";
  for (int i = 0; i < 600; ++i) mail.body += "<table><tr><td>";
  mail.body += "deep down</body></html> and behind the end\r\n";
}

void nested_parts(Draft& mail) {
  std::string inner = part("text/plain", "7bit", "the innermost part\r\n");
  for (int i = 0; i < 40; ++i) {
    make_multipart(mail, "mixed", {inner});
    inner = mail.fields + "\r\n" + mail.body;
  }
}

void one_megabyte(Draft& mail) {
  const std::string bytes = mail.random.bytes(std::size_t{765} << 10);
  mail.subject = "Pictures of the building site";
  make_multipart(mail, "mixed",
                 {part("text/plain", "7bit", "All pictures in one file.\r\n"),
                  attachment("pictures.zip", "application/zip", bytes)});
}

constexpr MailForm rare[] = {{"no header", no_header},
                             {"nothing", nothing},
                             {"no body", no_body},
                             {"truncated", truncated},
                             {"wrong charset", wrong_charset},
                             {"unknown charset", unknown_charset},
                             {"unknown encoding", unknown_encoding},
                             {"bad base64", bad_base64},
                             {"no boundary", no_boundary},
                             {"raw subject", raw_subject},
                             {"control bytes", control_bytes},
                             {"bare line feeds", bare_line_feeds},
                             {"long line", long_line},
                             {"long subject", long_subject},
                             {"hostile subject", hostile_subject},
                             {"right to left", right_to_left},
                             {"deep tables", deep_tables},
                             {"nested parts", nested_parts},
                             {"one megabyte", one_megabyte}};

}  // namespace

std::span<const MailForm> everyday_mails() {
  return everyday;
}

std::span<const MailForm> rare_mails() {
  return rare;
}

}  // namespace zrl::sample
