#include "pages/logs/monitor_page.h"

#include <algorithm>
#include <random>

#include "core/html_text.h"
#include "core/text/encoded_words.h"
#include "core/text/paths.h"
#include "core/text/text.h"
#include "core/text/utf8.h"
#include "core/text_file.h"
#include "pages/tools/composer_dialog.h"

namespace zrl {

namespace {

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
  bind_action(Command2, subjects, [this] { add_to_swords(msubject.text()); });
  bind_action(Command3, black_addresses, [this] { add_to_blackhost(sip.text()); });
  bind_action(Command8, white_addresses, [this] { add_to_whitehost(sip.text()); });
  bind_action(Command4, black_domains, [this] { add_to_blackdomain(sdom.text()); });
  bind_action(Command9, black_domains, [this] { add_to_blackdomain(returnaddr.text()); });
  bind_action(Command7, white_domains, [this] { add_to_whitedomain(sdom.text()); });
  bind_action(blacklistsender, black_mails,
              [this] { lists_.list_sender(sender.text(), list::black_mails, list::white_mails); });
  bind_action(Command10, white_mails,
              [this] { lists_.list_sender(sender.text(), list::white_mails, list::black_mails); });
  Command6.on_click = [this] {
    if (lists_.remove_entry()) refresh();
  };
  Command5.on_click = [this] { delete_mail(); };
  savemail.on_click = [this] { save_mail(); };
  bind_busy(Command11, &MonitorPage::reply);

  set_layout(column({
      grow(HScroll1),
      row({Command1, Check1}),
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
      frame(Frame3, row({Label18, Label12, Label19, Label13, Label20, Label14})),
  }));
}

void MonitorPage::load() {
  prepare_database();
  if (const auto interval = read_number("consolerefresh")) {
    set_interval(Timer1, "consolerefresh", *interval);
  }
  if (read_number("checkmail").value_or(0) <= 0) {
    blacklistsender.set_enabled(false);
    Command10.set_enabled(false);
  }
  refresh();
  show_position();
  read_counters();
  publish_version();
}

void MonitorPage::hide() {
  archive_.reset();
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
  if (archive_ && archive_->count() > 0) HScroll1.set_range(0, archive_->count() - 1);
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
  if (!archive_ || archive_->count() == 0) return;
  archive_->move_first();
  archive_->move(position);
  if (archive_->at_end() || shown_ == archive_->text("mid")) return;
  empty_fields();
  shown_ = archive_->text("mid");
  shown_key_ = archive_->number("ID");
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
  const Mail parsed = message->parse(source);
  if (!parsed.text_body.empty()) {
    mailheader.set_text(parsed.text_body);
    Label7.set_caption(translate("Textbody"));
  } else if (!parsed.html_body.empty()) {
    mailheader.set_text(console().html_text().html_to_text(parsed.html_body));
    Label7.set_caption(translate("HTMLbody"));
  }
}

void MonitorPage::bind_action(Button& button, const ArchiveLists::Touched& touched,
                              const std::function<void()>& operation) {
  bind_busy(button, [this, &touched, operation] {
    operation();
    lists_.touch(touched);
    refresh();
  });
}

void MonitorPage::delete_mail() {
  if (!shown_) return;
  const std::string key = std::to_string(shown_key_);
  empty_fields();
  const Outcome deleted =
      delete_row("delete from marchive ID " + key, "SELECT * FROM marchive where ID=" + number(key));
  if (!deleted) console().host().message_box({"Database Problem", deleted.problem, BoxStyle::plain});
  refresh();
}

void MonitorPage::save_mail() {
  if (!shown_) return;
  const auto record =
      open("SELECT * FROM marchive where mid='" + value(*shown_) + "'", Connection::Access::updatable);
  if (record) export_mail(*record);
}

// A mail that was exported once is not exported again.
void MonitorPage::export_mail(RecordSet& record) {
  read_rows("export of a mail", [&] {
    if (record.at_end() || !record.text("mpath").empty() || record.bytes("email").empty()) return;
    constexpr unsigned least = 100'000;
    const std::string number = std::to_string(least + std::random_device{}() % least);
    const std::string folder = to_product_path(console().folder()) + "\\archive\\";
    const std::string name = number + "." + console().time_stamp() + ".eml";
    if (!write_text_file(console(), folder, name, record.bytes("email"))) return;
    record.set_text("mpath", folder + name);
    record.update();
    console().host().offer_file(to_file_path(folder + name));
    console().host().message_box(
        {"Email Export", "Your Email got exported to " + folder + name, BoxStyle::plain});
  });
}

// Parses the stored source, because the field on the page holds valid UTF-8 only.
Mail MonitorPage::read_shown_mail() {
  Mail parsed;
  const auto message = component<MailMessage>();
  if (!message || !shown_) return parsed;
  const std::string key = std::to_string(shown_key_);
  const auto record = open("SELECT * FROM marchive where ID=" + number(key), Connection::Access::read_only);
  read_rows("marchive", [&] {
    if (record && !record->at_end()) parsed = message->parse(record->bytes("email"));
  });
  return parsed;
}

void MonitorPage::reply() {
  Mail parsed = read_shown_mail();
  std::string text = parsed.text_body;
  if (text.empty() && !parsed.html_body.empty()) text = console().html_text().html_to_text(parsed.html_body);
  if (parsed.sender.empty() && text.empty()) {
    parsed.sender = sender.text();
    parsed.subject = msubject.text();
    text = mailheader.text();
  }
  open_composer(console(), parsed.recipient, parsed.sender, reply_subject(parsed.subject),
                quotation_of(text));
}

}  // namespace zrl
