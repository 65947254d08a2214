#include "pages/logs/monitor_page.h"

#include <algorithm>
#include <random>
#include <utility>

#include "core/contracts/console_folder.h"
#include "core/html_text.h"
#include "core/text/encoded_words.h"
#include "core/text/paths.h"
#include "core/text/text.h"
#include "core/text/utf8.h"
#include "core/text_file.h"
#include "pages/tools/composer_dialog.h"

namespace zrl {

namespace {

constexpr Sentence mail_deleted{"Mail deleted from the archive", "Mail not deleted"};

// The text with "> " before every line.
std::string quotation_of(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    result.append("> ").append(text.substr(0, end + 1));
    text.remove_prefix(end + 1);
  }
  return result;
}

// Some writers put nothing but blanks, of any kind, into the text part beside an HTML part.
bool is_blank(std::string_view text) {
  constexpr std::u32string_view wide_blanks = U"\u00A0\u200B\uFEFF";
  while (!text.empty()) {
    const char32_t character = take_character(text);
    if (character > U' ' && wide_blanks.find(character) == wide_blanks.npos) return false;
  }
  return true;
}

std::string reply_subject(std::string_view subject) {
  return (lower(subject.substr(0, 3)) == "re:" ? "" : "Re: ") + std::string(subject);
}

}  // namespace

MonitorPage::MonitorPage(Console& console) : Page(console, "monitor", "Mail archive") {
  HScroll1.on_change = [this] { show_position(); };
  Command1.on_click = [this] { refresh(); };
  Timer1.on_tick = [this] {
    refresh();
    read_counters();
  };
  bind_action(Command2, msubject, subjects, [this] { add_to_swords(msubject.text()); });
  bind_action(Command3, sip, black_addresses, [this] { add_to_blackhost(sip.text()); });
  bind_action(Command8, sip, white_addresses, [this] { add_to_whitehost(sip.text()); });
  bind_action(Command4, sdom, black_domains, [this] { add_to_blackdomain(sdom.text()); });
  bind_action(Command9, returnaddr, black_domains, [this] { add_to_blackdomain(returnaddr.text()); });
  bind_action(Command7, sdom, white_domains, [this] { add_to_whitedomain(sdom.text()); });
  bind_action(blacklistsender, sender, black_mails,
              [this] { lists_.list_sender(sender.text(), list::black_mails, list::white_mails); });
  bind_action(Command10, sender, white_mails,
              [this] { lists_.list_sender(sender.text(), list::white_mails, list::black_mails); });
  Command6.on_click = [this] {
    if (lists_.remove_entry()) refresh();
  };
  Command5.on_click = [this] { delete_mail(); };
  savemail.on_click = [this] { save_mail(); };
  bind_busy(Command11, &MonitorPage::reply);
  Command5.set_destroys(loss::mail, [this] { return shown_ ? 1U : 0U; });

  set_layout(column({
      row({grow(HScroll1), Command1, Check1}),
      frame(Frame1, column({
                        row({grow(msubject), grow(mid)}),
                        row({grow(sender), grow(sdom), grow(returnaddr), grow(sip)}),
                        row({grow(column({row({grow(tstamp), grow(otstamp)}), grow(mailheader)})),
                             grow(column({envelope, mail}))}),
                        row({savemail, Command11, Command5}),
                    })),
      frame(Frame2, column({row({Command2, blacklistsender, Command10, Command4, Command7, Command9, Command3,
                                 Command8}),
                            grow(List1), row({grow(wert), Command6})})),
      frame(Frame3, row({row({Label18, Label12}), row({Label19, Label13}), row({Label20, Label14})})),
  }));
}

void MonitorPage::load() {
  prepare_database();
  load_interval();
  if (read_number("checkmail").value_or(0) <= 0) {
    blacklistsender.set_enabled(false);
    Command10.set_enabled(false);
  }
  refresh();
  show_position();
  read_counters();
  publish_version();
}

// In milliseconds. A longer interval than a timer can have becomes the longest.
void MonitorPage::load_interval() {
  constexpr std::int64_t longest = 65'535;
  const std::optional<OptionValue> stored = read_option("consolerefresh");
  if (!stored) return;
  const std::optional<std::int64_t> interval = stored->empty() ? 0 : to_number(stored->text);
  if (interval && std::in_range<std::int32_t>(*interval)) {
    set_interval(Timer1, "consolerefresh", std::min(*interval, longest));
  } else {
    failed(Kind::option, "read_option consolerefresh", "Type mismatch: not a 32-bit integer");
  }
}

void MonitorPage::hide() {
  archive_.reset();
}

void MonitorPage::open_query(std::string_view query) {
  const std::optional<std::int64_t> key = to_number(query);
  if (!key || !archive_) return;
  read_rows("marchive", [&] {
    std::int64_t position = 0;
    for (archive_->move_first(); !archive_->at_end(); archive_->move_next(), ++position) {
      if (archive_->is_null("ID") || archive_->number("ID") != *key) continue;
      HScroll1.set_value(position);
      show_mail(position);
      return;
    }
  });
}

void MonitorPage::prepare_database() {
  const std::string flag = settings().path_of("prepdb");
  if (settings().regread(flag) != "1") return;
  prep_mdb();
  settings().regwrite_string(flag, "0");
}

void MonitorPage::refresh() {
  open_archive();
  if (Check1.checked()) show_position();
  lists_.fill();
}

void MonitorPage::open_archive() {
  archive_ =
      open("SELECT * FROM marchive order by servertime desc,tstamp desc", Connection::Access::read_only);
  if (archive_) HScroll1.set_range(0, std::max<std::int64_t>(archive_->count() - 1, 0));
}

void MonitorPage::read_counters() {
  const auto show = [this](Label& label, std::string_view key) {
    if (const auto value = read_option(key)) label.set_caption(value->text);
  };
  show(Label12, "addbytes");
  show(Label13, "addconnections");
  show(Label14, "adddropps");
}

void MonitorPage::show_position() {
  read_rows("marchive", [this] { show_mail(HScroll1.value()); });
}

// Raises what the record set raises.
void MonitorPage::show_mail(std::int64_t position) {
  if (!archive_) return;
  archive_->move_first();
  archive_->move(position);
  // The second is a mail that has been deleted since the list was read.
  if (archive_->at_end() || archive_->is_null("ID")) return empty_fields();
  const std::int64_t key = archive_->number("ID");
  if (shown_ == key) return;
  empty_fields();
  shown_ = key;
  fill_fields();
  const std::string source(archive_->bytes("email"));
  if (!source.empty()) show_body(source);
}

void MonitorPage::empty_fields() {
  for (TextField* field : {&mid, &tstamp, &otstamp, &msubject, &sender, &sdom, &returnaddr, &sip, &envelope,
                           &mailheader, &mail}) {
    field->set_text("");
  }
  Label7.set_caption(translate("Message Header"));
  shown_.reset();
}

void MonitorPage::fill_fields() {
  const std::pair<TextField*, std::string_view> fields[] = {
      {&mid, "mid"},
      {&msubject, "subject"},
      {&sender, "sender"},
      {&sdom, "sdom"},
      {&sip, "sip"},
      {&envelope, "envelope"},
      {&mailheader, "mailheader"},
      {&returnaddr, "returnaddr"},
      {&tstamp, "servertime"},
      {&otstamp, "timestamp"},
  };
  for (const auto& [field, column] : fields) field->set_text(archive_->text(column));
  msubject.set_text(decode_encoded_words(msubject.text()));
}

void MonitorPage::show_body(std::string_view source) {
  mail.set_text(valid_utf8(source));
  const auto message = component<MailMessage>();
  if (!message) return;
  const Body body = body_of(message->parse(source));
  if (body.caption.empty()) return;
  mailheader.set_text(body.text);
  Label7.set_caption(translate(body.caption));
}

MonitorPage::Body MonitorPage::body_of(const Mail& parsed) {
  if (!is_blank(parsed.text_body)) return {parsed.text_body, "Textbody"};
  if (parsed.html_body.empty()) return {};
  return {console().html_text().html_to_text(parsed.html_body), "HTMLbody"};
}

void MonitorPage::bind_action(Button& button, const TextField& entry, const ArchiveLists::Touched& touched,
                              const std::function<void()>& operation) {
  bind_busy(button, [this, &entry, &touched, operation] {
    operation();
    say_added(trim(entry.text()), touched.list);
    lists_.touch(touched);
    refresh();
  });
}

std::unique_ptr<RecordSet> MonitorPage::open_shown_mail(Connection::Access access) {
  return open("SELECT * FROM marchive where ID=" + number(std::to_string(*shown_)), access);
}

// The mail that follows moves up to the position, and is shown.
void MonitorPage::delete_mail() {
  if (!shown_) return say_nothing("Nothing deleted: no mail is shown");
  const std::string key = std::to_string(*shown_);
  empty_fields();
  const Outcome deleted =
      delete_row("delete from marchive ID " + key, "SELECT * FROM marchive where ID=" + number(key));
  if (!deleted)
    console().host().message_box({translate("Database Problem"), deleted.problem, BoxStyle::plain});
  say(mail_deleted);
  refresh();
  show_position();
}

void MonitorPage::save_mail() {
  if (!shown_) return say_nothing("Nothing exported: no mail is shown");
  const auto record = open_shown_mail(Connection::Access::updatable);
  if (record) export_mail(*record);
}

// A mail that was exported once is not exported again.
void MonitorPage::export_mail(RecordSet& record) {
  std::string source;
  read_rows("marchive", [&] {
    if (!record.at_end() && record.text("mpath").empty()) source = record.bytes("email");
  });
  if (source.empty()) return say_nothing("Nothing exported: the mail has no source, or was exported before");
  const auto next_name = [this] {
    constexpr unsigned least = 100'000;
    return std::to_string(least + std::random_device{}() % least) + "." + console().time_stamp() + ".eml";
  };
  const std::string folder = to_product_path(console_folder::archive(console().folder())) + "\\";
  const std::string name = write_new_file(console(), folder, next_name, source);
  if (name.empty()) return say_failed("The mail was not exported");
  const std::string path = folder + name;
  const Outcome marked = write_row("update marchive ID " + std::to_string(*shown_) + " mpath " + path, [&] {
    record.set_text("mpath", path);
    record.update();
  });
  if (!marked || !console().writes().commit()) return say_failed("The mail was not exported");
  say_done("Mail exported to %1", {path});
  console().host().offer_file(to_file_path(path));
  console().host().message_box(
      {translate("Email Export"), translate("Your Email got exported to ") + path, BoxStyle::plain});
}

// Parses the stored source, because the field on the page holds valid UTF-8 only.
Mail MonitorPage::read_shown_mail() {
  Mail parsed;
  const auto message = component<MailMessage>();
  if (!message || !shown_) return parsed;
  const auto record = open_shown_mail(Connection::Access::read_only);
  read_rows("marchive", [&] {
    if (record && !record->at_end()) parsed = message->parse(record->bytes("email"));
  });
  return parsed;
}

void MonitorPage::reply() {
  Mail parsed = read_shown_mail();
  std::string text = body_of(parsed).text;
  if (parsed.sender.empty() && text.empty()) {
    parsed.sender = sender.text();
    parsed.subject = msubject.text();
    text = mailheader.text();
  }
  open_composer(console(), parsed.recipient, parsed.sender, reply_subject(parsed.subject),
                quotation_of(text));
}

}  // namespace zrl
