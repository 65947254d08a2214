#include "pages/lists/domain_page.h"

#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// "example.com" of "mail.sub.example.com"; a single label stays as it is.
std::string_view last_two_labels(std::string_view name) {
  const std::size_t last = name.rfind('.');
  if (last == name.npos || last == 0) return name;
  const std::size_t second = name.rfind('.', last - 1);
  return second == name.npos ? name : name.substr(second + 1);
}

}  // namespace

DomainPage::DomainPage(Console& console) : ListPage(console, "domainbw", "Domains") {
  bind_lists(Text1, Place::kept, {white_, black_});
  for (ListBox* box : {&List1, &List2}) box->set_entries_are(EntryKind::domain);
  bind_switches({
      {RetunPath, "ReturnPath"},
      {dcheck, "checkbodydom"},
      {hcheck, "checkheaderdom"},
      {checkbw, "checkbw"},
      {checkblhelo, "checkblhelo"},
  });
  bind_transfer(imexwhite, white_);
  bind_transfer(imexblack, black_);
  bind_update(remote, domain_list_files(), {"reloadblack", "reloadwhite"});
  refrall.on_click = [this] { fill_lists(); };

  Command1.on_click = [this] { show_change(add_to(white_, Text1.text())); };
  Command2.on_click = [this] { show_change(remove_from(white_, Text1.text())); };
  Command3.on_click = [this] { show_change(add_to(black_, Text1.text())); };
  Command4.on_click = [this] { show_change(remove_from(black_, Text1.text())); };

  bind_busy(findmx, &DomainPage::find_exchanger_address);
  Command6.on_click = [this] { find_exchanger_name(); };
  blip.on_click = [this] { list_address(true); };
  wlip.on_click = [this] { list_address(false); };
  Command5.on_click = [this] { connect_by_telnet(); };
  for (TextField* target : {&Text1, &mxip}) {
    target->on_change = [this, target] {
      if (!target->text().empty()) Command5.set_enabled(true);
    };
  }

  List1.set_acts({&Text1, &Command1, &Command2});
  List2.set_acts({&Text1, &Command3, &Command4});
  Command5.set_needs({&Text1, &mxip});
  Text1.set_expects(expects::domain);
  mxip.set_expects(expects::host);
  for (Button* act : {&blip, &wlip}) {
    act->set_needs({&mxip});
    act->set_takes(mxip, expects::ip_number);
  }

  set_layout(column({
      list_head(Text1, {refrall, remote}),
      grow(row({list_frame(Frame1, List1, {Command1, Command2, imexwhite}),
                list_frame(Frame2, List2, {Command3, Command4, imexblack})})),
      frame(Frame3, column({mxip, row({findmx, Command6, Command5, blip, wlip})})),
      frame(Frame4, grid({checkbw, RetunPath, hcheck, dcheck, checkblhelo})),
  }));
}

void DomainPage::fill_lists() {
  fill_list_boxes();
  load_switches();
  publish_version();
}

// The field shows the entry as it is stored.
void DomainPage::show_change(const EntryChange& change) {
  Text1.set_text(change.entry);
  fill_lists();
}

void DomainPage::find_exchanger_address() {
  mxip.set_text("");
  std::string asked;
  if (Text1.text().find('.') != std::string::npos) {
    asked = Text1.text();
    mxip.set_text(find_mail_exchanger(asked));
  }
  if (mxip.text().empty()) {
    Text1.set_text(last_two_labels(Text1.text()));
    if (Text1.text() != asked) mxip.set_text(find_mail_exchanger(Text1.text()));
  }
  if (!mxip.text().empty()) mxip.set_text(address_of(mxip.text()));
  say_exchanger(mxip.text());
}

void DomainPage::find_exchanger_name() {
  const StringList exchangers = mail_exchangers(Text1.text());
  if (!exchangers.empty()) mxip.set_text(exchangers[exchangers.size() - 1]);
  say_exchanger(exchangers.empty() ? std::string() : mxip.text());
}

void DomainPage::say_exchanger(const std::string& found) {
  if (found.empty()) {
    say_failed("No mail exchanger found for %1", {Text1.text()});
  } else {
    say_done("The mail exchanger of %1 is %2", {Text1.text(), found});
  }
}

void DomainPage::list_address(bool black) {
  if (!is_ip_address(mxip.text())) {
    say_nothing(said::no_ip_number, {mxip.text()});
    mxip.set_text(translate(not_an_ip_number));
  } else if (black) {
    add_to_blackhost(mxip.text());
    say_added(mxip.text(), list::black_addresses);
  } else {
    add_to_whitehost(mxip.text());
    say_added(mxip.text(), list::white_addresses);
  }
}

void DomainPage::connect_by_telnet() {
  const std::string target = is_ip_address(mxip.text()) ? mxip.text() : Text1.text();
  if (target.empty()) {
    Command5.set_enabled(false);
    say_nothing(said::needs_text);
  } else {
    run_program("telnet.exe", {target, "25"});
    say(said::program_started, {target});
  }
}

}  // namespace zrl
