#include "pages/logs/iplog_page.h"

#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

IplogPage::IplogPage(Console& console) : LogPage(console, "iplog", "IP log") {
  ipall.on_click = [this] { choose_view(""); };
  ipneutral.on_click = [this] { choose_view("status=0"); };
  ipblack.on_click = [this] { choose_view("status=2"); };
  ipwhite.on_click = [this] { choose_view("status=1"); };
  iplist.set_entries_are(EntryKind::address);
  iplist.on_click = [this] { click_address(); };
  bind_busy(Command9, &IplogPage::clear_list);

  Command1.on_click = [this] { change_status(IpStatus::neutral); };
  Command2.on_click = [this] { change_status(IpStatus::black); };
  Command3.on_click = [this] { change_status(IpStatus::white); };
  Command7.on_click = [this] { connect_by_telnet(IPNumber.text()); };
  bind_busy(delefrom, &IplogPage::delete_from_logs);

  bind_busy(reverse, &IplogPage::look_up_host_name);
  Command4.on_click = [this] { unlist_domain(domain.text()); };
  Command5.on_click = [this] { blacklist_domain(domain.text()); };
  Command6.on_click = [this] { whitelist_domain(domain.text()); };
  Command8.on_click = [this] { connect_by_telnet(domain.text()); };

  Command9.set_destroys(loss::log_rows, [this] {
    return count_rows(status_filter_.empty() ? Statement("select status from iplog")
                                             : "select status from iplog where " + status_filter_);
  });
  deletes_rows(delefrom, {"iplog", "predatalog", "subjectlog", "bodylog", "avlog"}, "IPNumber",
               [this] { return IPNumber.text(); });
  for (Button* act : {&Command1, &Command2, &Command3, &Command7, &delefrom, &reverse})
    act->set_needs({&IPNumber});
  for (Button* act : {&Command4, &Command5, &Command6, &Command8}) act->set_needs({&domain});
  IPNumber.set_expects(expects::ip_number);
  domain.set_expects(expects::domain);
  for (Button* act : {&Command1, &Command2, &Command3}) act->set_takes(IPNumber, expects::ip_number);

  set_layout(row({
      grow(frame(Frame1, column({row({ipall, ipneutral, ipblack, ipwhite}), grow(iplist), row({Command9})}))),
      grow(column({
          frame(Frame2, grid({row({Label1, Label5}), row({Label2, Label6}), row({Label3, Label7}),
                              row({Label4, Label8})})),
          frame(Frame3, column({IPNumber, row({Command2, Command3, Command1, Command7, delefrom})})),
          frame(Frame4, column({domain, row({reverse, Command5, Command6, Command4, Command8})})),
      })),
  }));
}

void IplogPage::show() {
  translate_controls();
  for (Label* count : {&Label5, &Label6, &Label7, &Label8}) count->set_caption("");
  connect_database();
  load();
  select_last(iplist);
  dns_.make();
}

void IplogPage::load() {
  status_filter_ = "";
  refresh_log();
}

void IplogPage::refresh_log() {
  show_count(Label5, "select status from iplog where status=0");
  show_count(Label6, "select status from iplog where status=2");
  show_count(Label7, "select status from iplog where status=1");
  show_count(Label8, "select status from iplog");
  iplist.set_items(ordered_rows("iplog", "IPNumber", status_filter_, "servertime").value_or(StringList()));
  select(iplist, selected_index_);
}

void IplogPage::choose_view(Literal condition) {
  status_filter_ = condition;
  refresh_log();
  select_last(iplist);
}

void IplogPage::click_address() {
  selected_index_ = iplist.index();
  IPNumber.set_text(iplist.chosen());
  domain.set_text("");
}

void IplogPage::change_status(IpStatus status) {
  IPNumber.set_text(trim(IPNumber.text()));
  if (is_ip_address(IPNumber.text())) {
    list_address(status, IPNumber.text());
    set_status("iplog", status, IPNumber.text());
    set_status("predatalog", status, IPNumber.text());
    say_listed(status, IPNumber.text());
  } else if (!IPNumber.text().empty()) {
    say_nothing(said::no_ip_number, {IPNumber.text()});
    IPNumber.set_text(translate(not_an_ip_number));
  } else {
    say_nothing(said::needs_text);
  }
  refresh_log();
}

void IplogPage::look_up_host_name() {
  show_host_name(dns_, iplist, [this] { return std::string(iplist.chosen()); }, domain);
}

void IplogPage::delete_from_logs() {
  delete_rows({"iplog", "predatalog", "subjectlog", "bodylog", "avlog"}, "IPNumber", IPNumber.text());
  say(said::log_rows_of, {IPNumber.text()});
  refresh_log();
}

// The table is emptied by statements of two SQL dialects, since a database may accept only one of them: the
// second is expected to fail here.
void IplogPage::clear_list() {
  const std::size_t rows = iplist.items().size();
  if (status_filter_.empty()) {
    execute("DELETE FROM iplog");
    execute("DELETE * FROM iplog", Failure::expected);
  } else {
    execute("DELETE FROM iplog where " + status_filter_);
  }
  say_counted(said::log_rows, rows);
  refresh_log();
}

}  // namespace zrl
