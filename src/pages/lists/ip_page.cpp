#include "pages/lists/ip_page.h"

#include <array>

#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

IpPage::IpPage(Console& console) : ListPage(console, "ipbw", "IP numbers") {
  bind_lists(ip, Place::kept, {black_, white_});
  for (ListBox* box : {&blackl, &whitel}) box->set_entries_are(EntryKind::address);
  bind_switches({
      {Check1, "ip_checking"},
      {bcheck, "checkbodyip"},
      {hcheck, "checkheaderip"},
      {autobl, "autoBLheader"},
      {acreject, "activereject"},
      {checkempty, "checkreverse"},
      {blr, "checkreverseblacklist"},
      {wlr, "checkreversewhitelist"},
  });
  autobl.on_click = [this] { click_autobl(); };
  bind_transfer(imleft, white_);
  bind_transfer(imright, black_);
  bind_update(remote, address_list_files());
  refrall.on_click = [this] { fill_lists(); };

  Command1.on_click = [this] { show_change(add_to(white_, ip.text())); };
  Command3.on_click = [this] { show_change(add_to(black_, ip.text())); };
  Command2.on_click = [this] { show_change(remove_from(black_, ip.text())); };

  bind_busy(rlookup, &IpPage::find_host_name);
  adbl.on_click = [this] { list_domain(list::black_domains, list::white_domains); };
  adwl.on_click = [this] { list_domain(list::white_domains, list::black_domains); };

  whitel.set_acts({&ip, &Command1, &Command2});
  blackl.set_acts({&ip, &Command3, &Command2});
  ip.set_expects(expects::ip_number);
  domain.set_expects(expects::domain);
  rlookup.set_needs({&ip});
  for (Button* act : {&Command1, &Command2, &Command3, &rlookup}) act->set_takes(ip, expects::ip_number);

  set_layout(column({
      list_head(row({grow(ip), Command2}), {refrall, remote}),
      grow(row(
          {list_frame(Frame1, whitel, {Command1, imleft}), list_frame(Frame2, blackl, {Command3, imright})})),
      frame(Frame3, column({domain, row({rlookup, adbl, adwl})})),
      frame(Frame4, grid({Check1, hcheck, bcheck, autobl, acreject})),
      frame(Frame5, grid({checkempty, blr, wlr})),
  }));
}

void IpPage::load() {
  dns_.make();
  fill_lists();
}

void IpPage::fill_lists() {
  load_switches();
  fill_list_boxes();
}

void IpPage::show_change(const EntryChange& change) {
  if (!is_ip_address(ip.text())) ip.set_text(translate(change.reason));
  fill_lists();
}

// Black-listing from headers and blocking reports exclude each other; switching one off does not
// change the other.
void IpPage::click_autobl() {
  const bool on = autobl.checked();
  set_option("autoBLheader", autobl.value());
  if (autobl.checked()) set_option("blockndr", 0);
  say_switched(autobl, on);
}

void IpPage::find_host_name() {
  const std::string address = ip.text();
  if (!is_ip_address(address)) return say_nothing(said::no_ip_number, {address});
  const auto name = host_name_of(dns_, address);
  if (name) domain.set_text(*name);
  if (name) return say_done(said::host_found, {address, *name});
  say_failed(said::host_not_found, {address});
}

// The text is not escaped and no flag is raised here, unlike on the page of the domain lists.
void IpPage::list_domain(const ListTable& own, const ListTable& other) {
  if (domain.text().find('.') == std::string::npos) {
    return say_nothing("Nothing stored: %1 is no domain", {domain.text()});
  }
  const std::string entry(trim(domain.text()));
  const bool stored = run_entry_steps(
      *this, std::array{take_off(own), take_off_any(own), take_off(other), take_off_any(other), put_on(own)},
      entry);
  say_added(entry, own, stored);
  domain.set_text("");
}

}  // namespace zrl
