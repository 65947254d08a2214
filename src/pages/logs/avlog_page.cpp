#include "pages/logs/avlog_page.h"

#include <array>

#include "core/list_changes.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr Sentence senders_added{"%1 senders added to the %2", "Senders not added to the %2",
                                 "1 sender added to the %2"};
constexpr Sentence senders_removed{"%1 senders removed from both lists", "Senders not removed",
                                   "1 sender removed from both lists"};

}  // namespace

AvlogPage::AvlogPage(Console& console) : LogPage(console, "avlog", "Attachment log") {
  control14.on_click = [this] { click_row(); };
  from.on_click = [this] { click_sender(); };
  ip.on_click = [this] { Text2.set_text(ip.chosen()); };

  const auto bind_all = [&](Button& button, const ListTable* own,
                            const std::function<bool(std::string_view)>& action) {
    bind_busy(button, [this, own, action] {
      const std::size_t senders = from.items().size();
      lowercase_mail_lists();
      const std::size_t done = for_each_sender(action);
      if (own == nullptr) return say_of_each(senders_removed, done, senders);
      say_of_each(senders_added, done, senders, {list_words(*own)});
    });
  };
  const auto bind_one = [&](Button& button, const std::function<void(std::string_view)>& action) {
    bind_busy(button, [this, action] {
      lowercase_mail_lists();
      if (Text1.text().empty()) return say_nothing(said::needs_text);
      action(Text1.text());
    });
  };
  const auto list_one = [this](std::string_view sender, const ListTable& own, const ListTable& opposite) {
    const bool stored = list_sender(sender, own, opposite);
    say_added(lower(trim(sender)), own, stored);
  };
  bind_all(Command1, &list::black_mails,
           [this](std::string_view v) { return list_sender(v, list::black_mails, list::white_mails); });
  bind_all(Command2, &list::white_mails,
           [this](std::string_view v) { return list_sender(v, list::white_mails, list::black_mails); });
  bind_all(Command5, nullptr,
           [this](std::string_view v) { return unlist_sender(v, list::black_mails, list::white_mails); });
  bind_one(Command7, [=](std::string_view v) { list_one(v, list::black_mails, list::white_mails); });
  bind_one(Command8, [=](std::string_view v) { list_one(v, list::white_mails, list::black_mails); });
  bind_one(Command9, [this](std::string_view v) {
    unlist_sender(v, list::white_mails, list::black_mails);
    say(said::removed_from_both, {lower(trim(v))});
  });

  bind_busy(Command3, [this] { list_all_addresses(IpStatus::black); });
  bind_busy(Command4, [this] { list_all_addresses(IpStatus::white); });
  bind_busy(Command6, [this] { list_all_addresses(IpStatus::neutral); });
  bind_busy(Command10, [this] { list_one_address(IpStatus::black); });
  bind_busy(Command11, [this] { list_one_address(IpStatus::white); });
  bind_busy(Command12, [this] { list_one_address(IpStatus::neutral); });

  bind_busy(Command13, &AvlogPage::clear_sender);
  bind_busy(Command14, &AvlogPage::clear_address);
  Command15.on_click = [this] { refresh_log(); };

  for (Button* act : {&Command1, &Command2, &Command5}) act->set_destroys(loss::listed_senders, from);
  for (Button* act : {&Command3, &Command4, &Command6}) act->set_destroys(loss::listed_addresses, ip);
  deletes_rows(Command13, {"avlog", "predatalog", "subjectlog", "bodylog"}, "mailfrom",
               [this] { return lower(trim(from.chosen())); });
  deletes_rows(Command14, {"avlog", "iplog", "predatalog", "subjectlog", "bodylog"}, "IPNumber",
               [this] { return lower(trim(ip.chosen())); });

  set_layout(column({
      grow(frame(Frame1, column({grow(control14), row({Command15})}))),
      grow(row({
          grow(frame(Frame2, column({grow(from), row({Command1, Command2, Command5}), Text1,
                                     row({Command7, Command8, Command9, Command13})}))),
          grow(frame(Frame3, column({grow(ip), row({Command3, Command4, Command6}), Text2,
                                     row({Command10, Command11, Command12, Command14})}))),
      })),
  }));
}

void AvlogPage::load() {
  mail_lists_lower_cased_ = false;
  refresh_log();
}

void AvlogPage::refresh_log() {
  rows_ = read_log("SELECT * from avlog order by servertime desc", "reason", Texts::trimmed_lower_case);
  control14.set_items(rows_.lines());
  Text1.set_text("");
  Text2.set_text("");
  ip.clear();
  from.clear();
  if (rows_.size() > 0) control14.click_item(static_cast<std::int64_t>(rows_.size()) - 1);
}

void AvlogPage::click_row() {
  const std::string_view reason = rows_.what[static_cast<std::size_t>(control14.index())];
  StringList senders;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_.what[i] == reason && !rows_.senders[i].empty()) senders.push_back(rows_.senders[i]);
  }
  from.set_items(std::move(senders));
  ip.clear();
  Text1.set_text("");
  Text2.set_text("");
}

void AvlogPage::click_sender() {
  const std::string sender(from.chosen());
  StringList addresses;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_.senders[i] == sender && !rows_.addresses[i].empty()) addresses.push_back(rows_.addresses[i]);
  }
  ip.set_items(std::move(addresses));
  Text1.set_text(sender);
  Text2.set_text("");
}

bool AvlogPage::list_sender(std::string_view sender, const ListTable& own, const ListTable& opposite) {
  const std::string entry = lower(trim(sender));
  return run_entry_steps(*this, std::array{put_on(own), take_off(opposite)}, entry);
}

bool AvlogPage::unlist_sender(std::string_view sender, const ListTable& first, const ListTable& second) {
  const std::uint64_t failures = console().activity().failures();
  run_entry_steps(*this, std::array{take_off(first), take_off(second)}, lower(trim(sender)));
  return console().activity().failures() == failures;
}

// The order of the steps differs from that for a single address, on purpose.
void AvlogPage::list_all_addresses(IpStatus status) {
  const StringList addresses = ip.items();
  std::size_t listed = 0;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    keep_alive(addresses[i], i, addresses.size());
    set_status("predatalog", status, addresses[i]);
    set_status("iplog", status, addresses[i]);
    if (list_address(status, addresses[i])) ++listed;
  }
  say_listed(status, listed, addresses.size());
}

void AvlogPage::list_one_address(IpStatus status) {
  const std::string address = Text2.text();
  if (address.empty()) return say_nothing(said::needs_text);
  list_address(status, address);
  set_status("iplog", status, address);
  set_status("predatalog", status, address);
  say_listed(status, address);
}

void AvlogPage::clear_sender() {
  if (from.index() < 0) return say_nothing("Nothing deleted: no sender is chosen");
  delete_rows({"avlog", "predatalog", "subjectlog", "bodylog"}, "mailfrom", lower(trim(from.chosen())));
  say(said::log_rows_of, {from.chosen()});
  refresh_log();
}

void AvlogPage::clear_address() {
  if (ip.index() < 0) return say_nothing("Nothing deleted: no IP number is chosen");
  delete_rows({"avlog", "iplog", "predatalog", "subjectlog", "bodylog"}, "IPNumber",
              lower(trim(ip.chosen())));
  say(said::log_rows_of, {ip.chosen()});
  refresh_log();
}

void AvlogPage::lowercase_mail_lists() {
  if (mail_lists_lower_cased_) return;
  mail_lists_lower_cased_ = true;
  lcase_table(list::black_mails);
  lcase_table(list::white_mails);
}

std::size_t AvlogPage::for_each_sender(const std::function<bool(std::string_view)>& action) {
  const StringList senders = from.items();
  std::size_t done = 0;
  for (std::size_t i = 0; i < senders.size(); ++i) {
    keep_alive(senders[i], i, senders.size());
    if (action(senders[i])) ++done;
  }
  return done;
}

}  // namespace zrl
