#include "pages/lists/local_page.h"

#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

LocalPage::LocalPage(Console& console) : ListPage(console, "localstuff", "Local domains and IP numbers") {
  bind_lists(Text1, Place::forgotten, {domains_, addresses_});
  bind_switches({{acheck, "norelay"}, {checklocalhelo, "checklocalhelo"}, {nofakedom, "nofakedom"}});
  bind_transfer(imleft, domains_);
  bind_transfer(imright, addresses_);

  bind_busy(Command1, &LocalPage::add_text);
  Command2.on_click = [this] { remove_text(); };
  Command3.on_click = [this] { fill_lists(); };

  List1.set_acts({&Text1, &Command1, &Command2});
  List2.set_acts({&Text1, &Command1, &Command2});
  Text1.set_expects(expects::domain_or_ip_number);

  set_layout(column({
      list_head(row({grow(Text1), Command1, Command2}), {Command3}),
      grow(row({list_frame(Frame1, List1, {imleft}), list_frame(Frame2, List2, {imright})})),
      frame(Frame3, grid({acheck, checklocalhelo, nofakedom})),
  }));
}

void LocalPage::fill_lists() {
  Text1.set_text("");
  fill_list_boxes();
  load_switches();
}

void LocalPage::add_text() {
  add_to(is_ip_address(trim(Text1.text())) ? addresses_ : domains_, Text1.text());
  fill_lists();
}

void LocalPage::remove_text() {
  if (trim(Text1.text()).empty()) return say_nothing(said::no_entry_to_remove);
  remove_from(domains_, Text1.text());
  fill_lists();
}

}  // namespace zrl
