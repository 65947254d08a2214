#include "pages/logs/keywordlog_page.h"

#include <array>

#include "core/list_changes.h"
#include "core/text/text.h"

namespace zrl {

KeywordlogPage::KeywordlogPage(Console& console) : LogPage(console, "keywordlog", "Keyword log") {
  subject.on_click = [this] { refresh_log(); };
  body.on_click = [this] { refresh_log(); };
  logs.on_click = [this] { click_row(); };
  Command13.on_click = [this] { refresh_log(); };
  Command11.on_click = [this] { clear_log(); };
  Command12.on_click = [this] { telnet(); };

  const auto bind = [this](Button& button, TextField& source, const std::function<void()>& action) {
    button.set_needs({&source});
    button.on_click = [this, &button, &source, action] {
      if (source.text().empty()) return say_nothing(said::needs_text);
      busy(button, action);
    };
  };
  bind(Command1, keyw, [this] { remove_keyword(); });
  bind(Command2, mfrom, [this] { list_sender(list::black_mails, list::white_mails); });
  bind(Command3, mfrom, [this] { list_sender(list::white_mails, list::black_mails); });
  bind(Command4, dfrom, [this] { list_domain(dfrom.text(), list::black_domains, list::white_domains); });
  bind(Command5, dfrom, [this] { list_domain(dfrom.text(), list::white_domains, list::black_domains); });
  bind(Command6, ip, [this] { list_client(IpStatus::black); });
  bind(Command7, ip, [this] { list_client(IpStatus::white); });
  bind(Command9, shost, [this] { list_domain(shost.text(), list::black_domains, list::white_domains); });
  Command10.on_click = [this] { whitelist_host(); };
  Command8.on_click = [this] { look_up_host(); };
  Command10.set_needs({&shost});
  Command12.set_needs({&ip, &shost});
  declare_losses();
  subject.choose();

  set_layout(row({
      grow(frame(Frame1, column({row({subject, body}), grow(logs), row({Command13, Command11})}))),
      grow(column({
          frame(Frame2, row({grow(keyw), Command1})),
          frame(Frame3, column({row({grow(mfrom), Command2, Command3}),
                                row({grow(dfrom), Command4, Command5}), rto})),
          frame(Frame4, column({row({grow(ip), Command6, Command7}), row({Command8, Command12}),
                                row({grow(shost), Command9, Command10})})),
      })),
  }));
}

// Most acts delete rows besides what they put on a list.
void KeywordlogPage::declare_losses() {
  Command11.set_destroys(loss::log_rows, [this] {
    return count_rows(body.chosen() ? Literal("select ID from bodylog")
                                    : Literal("select ID from subjectlog"));
  });
  Command1.set_destroys(loss::log_rows,
                        [this] { return count_rows({log_table()}, "keyword", lower(keyw.text())); });
  // The one row that a person is looking at needs no question.
  using Rows = std::optional<std::uint64_t>;
  const auto if_several = [](const Rows& rows) { return rows == 1 ? Rows(0) : rows; };
  for (Button* act : {&Command2, &Command3, &Command4, &Command5, &Command9, &Command10}) {
    act->set_destroys(loss::log_rows, [this, if_several] {
      const std::string sender = lower(mfrom.text());
      if (trim(sender).empty()) return Rows(0);
      return if_several(count_rows({"subjectlog", "bodylog"}, "mailfrom", sender));
    });
  }
  for (Button* act : {&Command6, &Command7}) {
    act->set_destroys(loss::log_rows, [this, if_several] {
      return if_several(count_rows({"subjectlog", "bodylog"}, "IPNumber", lower(ip.text())));
    });
  }
}

void KeywordlogPage::show() {
  lower_cased_.clear();
  LogPage::show();
  dns_.make();
}

void KeywordlogPage::refresh_log() {
  for (TextField* field : {&ip, &mfrom, &rto, &keyw, &shost, &dfrom}) field->set_text("");
  rows_ = body.chosen()
              ? read_log("SELECT * from bodylog order by servertime desc", "keyword", Texts::as_stored)
              : read_log("SELECT * from subjectlog order by servertime desc", "keyword", Texts::as_stored);
  logs.set_items(rows_.lines());
  if (rows_.size() > 0) logs.click_item(static_cast<std::int64_t>(rows_.size()) - 1);
}

void KeywordlogPage::click_row() {
  const auto index = static_cast<std::size_t>(logs.index());
  ip.set_text(rows_.addresses[index]);
  mfrom.set_text(rows_.senders[index]);
  rto.set_text(rows_.recipients[index]);
  keyw.set_text(rows_.what[index]);
  const std::size_t at = mfrom.text().find('@');
  dfrom.set_text(at == std::string::npos ? std::string() : mfrom.text().substr(at + 1));
}

void KeywordlogPage::remove_keyword() {
  const std::string keyword = lower(keyw.text());
  const ListTable& keywords = body.chosen() ? list::body_keywords : list::subject_keywords;
  lower_case_once(keywords);
  execute(delete_from(log_table(), "keyword", keyword));
  run_entry_steps(*this, std::array{take_off(keywords)}, keyword);
  say(said::removed, {keyword, list_words(keywords)});
  refresh_log();
}

void KeywordlogPage::list_sender(const ListTable& own, const ListTable& opposite) {
  mfrom.set_text(lower(trim(mfrom.text())));
  lower_case_once(own);
  lower_case_once(opposite);
  const bool stored = run_entry_steps(*this, std::array{put_on(own), take_off(opposite)}, mfrom.text());
  say_added(mfrom.text(), own, stored);
  if (!mfrom.text().empty()) forget_sender();
}

void KeywordlogPage::list_domain(std::string_view domain, const ListTable& own, const ListTable& opposite) {
  const std::string entry(trim(domain));
  lower_case_once(list::black_domains);
  lower_case_once(list::white_domains);
  const bool stored =
      run_entry_steps(*this, std::array{take_off(own), take_off(opposite), put_on(own)}, entry);
  say_added(entry, own, stored);
  forget_sender();
}

void KeywordlogPage::list_client(IpStatus status) {
  list_address(status, ip.text());
  say_listed(status, ip.text());
  set_status("iplog", status, ip.text());
  set_status("predatalog", status, ip.text());
  delete_rows({"subjectlog", "bodylog"}, "IPNumber", lower(ip.text()));
}

// Whatever was put on a list, the sender's rows are the ones that are deleted.
void KeywordlogPage::forget_sender() {
  if (!trim(mfrom.text()).empty()) {
    delete_rows({"subjectlog", "bodylog"}, "mailfrom", lower(mfrom.text()));
  } else if (logs.index() >= 0) {
    const std::string key = std::to_string(rows_.keys[static_cast<std::size_t>(logs.index())]);
    execute("DELETE FROM " + log_table() + " where ID=" + number(key));
  }
}

// Enables the other button; this one stays disabled until the next look-up.
void KeywordlogPage::whitelist_host() {
  if (shost.text().empty()) return say_nothing(said::needs_text);
  Command10.set_enabled(false);
  list_domain(shost.text(), list::white_domains, list::black_domains);
  Command9.set_enabled(true);
}

void KeywordlogPage::look_up_host() {
  if (!ip.text().empty()) {
    shost.set_text("");
    busy(Command8, [this] { show_host_name(dns_, logs, [this] { return ip.text(); }, shost); });
  }
  Command10.set_enabled(true);
}

void KeywordlogPage::clear_log() {
  const std::size_t rows = rows_.size();
  execute(body.chosen() ? Literal("DELETE FROM bodylog") : Literal("DELETE FROM subjectlog"));
  say_counted(said::log_rows, rows);
  refresh_log();
}

void KeywordlogPage::telnet() {
  const std::string& target = ip.text().empty() ? shost.text() : ip.text();
  if (target.empty()) return say_nothing(said::needs_text);
  connect_by_telnet(target);
}

void KeywordlogPage::lower_case_once(const ListTable& list) {
  if (lower_cased_.insert(list.name).second) lcase_table(list);
}

}  // namespace zrl
