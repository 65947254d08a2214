#include "pages/logs/predatalog_page.h"

#include <utility>

#include "core/text/list_entry.h"

namespace zrl {

namespace {

constexpr Sentence reason_changed{"Status of all rows with the reason \"%1\" changed", "Status not changed"};
constexpr Sentence view_deleted{"The rows on view deleted from the header log", "Rows not deleted"};
constexpr Sentence addresses_deleted{"Rows of %1 IP numbers deleted from the logs",
                                     "Rows not deleted from the logs",
                                     "Rows of 1 IP number deleted from the logs"};

}  // namespace

PredatalogPage::PredatalogPage(Console& console) : LogPage(console, "predatalog", "Header log") {
  ip.set_entries_are(EntryKind::address);
  for (OptionButton* option : {&blacklist, &whitelist, &showall}) {
    option->on_click = [this] { choose_view(); };
  }
  reason.on_click = [this] { click_reason(); };
  ip.on_click = [this] {
    selected_ip_index_ = ip.index();
    IPNumber.set_text(ip.chosen());
  };
  rtext.on_change = [this] { cchange.set_enabled(!rtext.text().empty()); };
  IPNumber.on_change = [this] {
    ipaction.set_caption(translate(view().change_one));
    ipaction.set_enabled(!IPNumber.text().empty());
  };
  bind_busy(cchange, &PredatalogPage::change_all);
  ipaction.on_click = [this] { change_address(); };
  Command1.on_click = [this] { delete_view(); };
  bind_busy(Command2, &PredatalogPage::delete_listed);
  delip.on_click = [this] { delete_address(); };
  Command3.on_click = [this] { look_up_host_name(); };
  Command4.on_click = [this] { blacklist_domain(reversedom.text()); };
  Command5.on_click = [this] { whitelist_domain(reversedom.text()); };
  Command6.on_click = [this] { unlist_domain(reversedom.text()); };
  Command7.on_click = [this] { telnet(); };

  for (Button* act : {&delip, &Command3}) act->set_needs({&IPNumber});
  for (Button* act : {&Command4, &Command5, &Command6}) act->set_needs({&reversedom});
  Command7.set_needs({&IPNumber, &reversedom});
  IPNumber.set_expects(expects::ip_number);
  reversedom.set_expects(expects::domain);
  for (Button* act : {&ipaction, &Command3}) act->set_takes(IPNumber, expects::ip_number);

  declare_losses();
  showall.choose();
  cchange.set_enabled(false);
  ipaction.set_enabled(false);

  set_layout(column({
      row({grow(frame(Frame1, row({blacklist, whitelist, showall}))),
           grow(
               frame(Frame5, row({row({Label9, Label4}), row({Label10, Label5}), row({Label11, Label6})})))}),
      grow(row({
          grow(frame(Frame2, column({grow(reason), rtext, row({cchange, Command2, Command1})}))),
          grow(frame(Frame3, column({grow(ip), ipcount, IPNumber, row({ipaction, delip, Command3})}))),
      })),
      frame(Frame4, column({reversedom, row({Command4, Command5, Command6, Command7})})),
  }));
}

void PredatalogPage::declare_losses() {
  Command1.set_destroys(loss::log_rows, [this] {
    const Literal condition = view().condition;
    return count_rows(condition.empty() ? Statement("select status from predatalog")
                                        : "select status from predatalog where " + condition);
  });
  Command2.set_destroys(loss::rows_of_addresses, [this]() -> std::optional<std::uint64_t> {
    if (ip.items().empty() && !rtext.text().empty()) return {};
    return ip.items().size();
  });
  deletes_rows(delip, {"iplog", "predatalog", "subjectlog", "bodylog", "avlog"}, "IPNumber",
               [this] { return IPNumber.text(); });
  // Rows of the reason change even where no address is listed.
  cchange.set_destroys(loss::listed_addresses, [this]() -> std::optional<std::uint64_t> {
    if (ip.items().empty()) return {};
    return ip.items().size();
  });
}

const PredatalogPage::View& PredatalogPage::view() const {
  static constexpr View black{"status=2",      "Whitelist IP's below", "Whitelist",
                              IpStatus::white, IpStatus::white,        IpStatus::black};
  static constexpr View white{"status=1",      "Blacklist IP's below", "Blacklist",
                              IpStatus::black, IpStatus::black,        IpStatus::white};
  static constexpr View all{
      "", "Neutral IP's below", "Neutral", IpStatus::neutral, IpStatus::neutral, IpStatus::neutral};
  if (blacklist.chosen()) return black;
  return whitelist.chosen() ? white : all;
}

void PredatalogPage::show() {
  translate_controls();
  IPNumber.set_text("");
  reason_filter_ = {};
  cchange.set_caption(translate(view().change_all));
  connect_database();
  load();
  dns_.make();
  if (rtext.text().empty()) select_last(reason);
}

void PredatalogPage::load() {
  refresh_reasons();
}

void PredatalogPage::refresh_reasons() {
  IPNumber.set_text("");
  ip.clear();
  StringList reasons =
      ordered_rows("predatalog", "reason", view().condition, "servertime").value_or(StringList());
  reasons.retain([](std::string_view text) { return !text.empty(); });
  reason.set_items(std::move(reasons));
  mark_reason();
  show_count(Label4, "select status from predatalog where status=1");
  show_count(Label5, "select status from predatalog where status=2");
  show_count(Label6, "select status from predatalog where status=0");
}

void PredatalogPage::mark_reason() {
  const std::size_t place = reason.items().find(rtext.text());
  reason.set_index(place < reason.items().size() ? static_cast<std::int64_t>(place) : -1);
}

void PredatalogPage::refresh_addresses() {
  if (!reason_filter_.empty()) {
    // A click while the list is being filled starts again, and the earlier call stops.
    const std::uint64_t build = ++address_builds_;
    IPNumber.set_text("");
    ip.clear();
    const StringList addresses =
        ordered_rows("predatalog", "IPNumber", reason_filter_, "servertime").value_or(StringList());
    for (std::size_t i = 0; i < addresses.size(); ++i) {
      if (!is_ip_address(addresses[i])) continue;
      ip.add_item(addresses[i]);
      process_events();
      if (build != address_builds_) return;
    }
    select(ip, selected_ip_index_);
  }
  reason_filter_ = {};
  ipcount.set_caption(std::to_string(ip.items().size()) + " " + translate("listed"));
}

void PredatalogPage::refresh() {
  refresh_reasons();
  refresh_addresses();
}

void PredatalogPage::choose_view() {
  rtext.set_text("");
  cchange.set_caption(translate(view().change_all));
  ipaction.set_caption(translate(view().change_one));
  refresh_reasons();
  if (!reason.items().empty()) reason.click_item(static_cast<std::int64_t>(reason.items().size()) - 1);
  if (whitelist.chosen()) refresh_addresses();
}

void PredatalogPage::click_reason() {
  rtext.set_text(reason.chosen());
  process_events();
  reason_filter_ = "reason='" + value(reason.chosen()) + "'";
  process_events();
  refresh_addresses();
}

void PredatalogPage::change_all() {
  const View& chosen = view();
  if (!rtext.text().empty()) {
    const std::string digit = std::to_string(static_cast<int>(chosen.status));
    execute("UPDATE predatalog set status=" + number(digit) + " where reason='" + value(rtext.text()) + "'");
  }
  if (!rtext.text().empty()) say(reason_changed, {rtext.text()});
  const std::size_t addresses = ip.items().size();
  std::size_t listed = 0;
  for_each_address([&](std::string_view address) {
    set_status("predatalog", chosen.status, address);
    set_status("iplog", chosen.status, address);
    if (list_address(chosen.list_for_all, address)) ++listed;
  });
  if (addresses > 0 || rtext.text().empty()) say_listed(chosen.list_for_all, listed, addresses);
  refresh();
}

void PredatalogPage::change_address() {
  const std::string address = IPNumber.text();
  if (is_ip_address(address)) {
    list_address(view().list_for_one, address);
    set_status("iplog", view().status, address);
    set_status("predatalog", view().status, address);
    say_listed(view().list_for_one, address);
  } else if (!address.empty()) {
    ipaction.set_enabled(false);
    say_nothing(said::no_ip_number, {address});
  }
  refresh();
}

void PredatalogPage::delete_view() {
  const Literal condition = view().condition;
  execute(condition.empty() ? Statement("DELETE FROM predatalog")
                            : "DELETE FROM predatalog where " + condition);
  say(view_deleted);
  refresh();
}

void PredatalogPage::delete_listed() {
  const std::size_t addresses = ip.items().size();
  for_each_address([&](std::string_view address) {
    delete_rows({"predatalog", "avlog", "iplog", "subjectlog", "bodylog"}, "IPNumber", address);
  });
  say_counted(addresses_deleted, addresses);
  if (!rtext.text().empty()) {
    execute(delete_from("predatalog", "reason", rtext.text()));
    say(said::log_rows_of, {rtext.text()});
  }
  refresh();
}

void PredatalogPage::delete_address() {
  delete_rows({"iplog", "predatalog", "subjectlog", "bodylog", "avlog"}, "IPNumber", IPNumber.text());
  say(said::log_rows_of, {IPNumber.text()});
  refresh();
}

void PredatalogPage::look_up_host_name() {
  reversedom.set_text("");
  if (is_ip_address(IPNumber.text())) {
    busy(Command3, [this] { show_host_name(dns_, ip, [this] { return IPNumber.text(); }, reversedom); });
  } else {
    say_nothing(said::no_ip_number, {IPNumber.text()});
    IPNumber.set_text("");
  }
}

void PredatalogPage::telnet() {
  const std::string& target = IPNumber.text().empty() ? reversedom.text() : IPNumber.text();
  if (target.empty()) return say_nothing(said::needs_text);
  connect_by_telnet(target);
}

// Works on a copy of the list, which the user's actions in the meantime do not affect.
void PredatalogPage::for_each_address(const std::function<void(std::string_view)>& action) {
  const StringList addresses = ip.items();
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    if (addresses[i].empty()) continue;
    keep_alive(addresses[i], i, addresses.size());
    action(addresses[i]);
  }
}

}  // namespace zrl
